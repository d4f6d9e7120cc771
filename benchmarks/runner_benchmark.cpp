// What it costs to run a program and to get its lines, beside other ways to do so.
#include <malloc.h>

#include "benchmarks/comparison.h"
#include "benchmarks/runners.h"

namespace {

/// Keeps freed memory, as the heap of a host that has run for a while does. Otherwise free would
/// return the lines of each run to the kernel, and page faults would dominate the measurement.
void keepHeap()
{
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
}

void compareRuns(const std::string& name, const std::string& command)
{
    std::vector<Side> sides;
    for (const Runner& runner : runners())
        sides.push_back({runner.name, waiting([=] { keep(runner.run(command)); })});
    compare(name, sides);
}

} // namespace

int main()
{
    keepOtherLoadAway();
    keepHeap();
    compareRuns("an empty run", "/bin/true");
    compareRuns("a run of ten lines", LINES_PROGRAM " 10 63");
    compareRuns("a run of 1 MiB", LINES_PROGRAM " 16384 63");
}

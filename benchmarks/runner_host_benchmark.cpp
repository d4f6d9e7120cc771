// What an empty run costs in hosts that make it hard: one of 1 GiB, whose memory a fork would copy,
// and one that may open 20,000 descriptors, which some close one by one.
#include <cstring>
#include <stdexcept>

#include <sys/mman.h>
#include <sys/resource.h>

#include "benchmarks/comparison.h"
#include "benchmarks/host_process.h"
#include "benchmarks/runners.h"

namespace {

/// Touches 1 GiB in small pages.
void takeMemory()
{
    constexpr std::size_t size = std::size_t{1} << 30;
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::runtime_error("cannot take 1 GiB");
    madvise(memory, size, MADV_NOHUGEPAGE);
    std::memset(memory, 1, size);
}

void limitDescriptors(rlim_t most)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = most;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
        throw std::runtime_error("cannot set the limit of descriptors");
}

/// All runners in the hard host, and ours in an ordinary one.
void compareHosts(const std::string& name, const std::function<void()>& prepare,
                  const std::function<void()>& prepareOrdinary)
{
    std::vector<Measure> measures;
    for (const Runner& runner : runners())
        measures.push_back(waiting([=] { keep(runner.run("/bin/true")); }));
    const HostProcess ordinary(prepareOrdinary, {measures.front()});
    const HostProcess hard(prepare, measures);
    std::vector<Side> sides;
    for (const Runner& runner : runners())
        sides.push_back({runner.name, hard.measure(sides.size())});
    sides.push_back({"ours, in an ordinary host", ordinary.measure(0)});
    compare(name, sides);
}

} // namespace

int main()
{
    keepOtherLoadAway();
    compareHosts("an empty run in a host of 1 GiB", takeMemory, [] {});
    compareHosts(
        "an empty run under a limit of 20000 descriptors", [] { limitDescriptors(20000); },
        [] { limitDescriptors(1024); });
}

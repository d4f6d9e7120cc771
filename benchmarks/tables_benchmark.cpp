// What reading a tool's table costs, without the tool.
#include <benchmark/benchmark.h>

#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

namespace {

std::vector<std::string>& table()
{
    static std::vector<std::string> lines;
    return lines;
}

// No row qualifies, so that every one is read.
void readTable(benchmark::State& state)
{
    table().assign(static_cast<std::size_t>(state.range(0)),
                   "sdb     DISABLED     SECONDARY    c1");
    table()[0] = "NAME    STATE         TYPE         CTLR";
    CKoDMPSupport support;
    std::string disk;
    for (auto _ : state)
        benchmark::DoNotOptimize(support.getOSDiskHandleForKoVMDisk("arr0_17", disk));
}

// Time in proportion: ten times the rows cost ten times the time.
BENCHMARK(readTable)->Name("table of 1000000 rows against 100000/ours")->Arg(1000000);
BENCHMARK(readTable)->Name("table of 1000000 rows against 100000/reference")->Arg(100000);

} // namespace

namespace koze_pdk_4_4 {

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}
CZeExecPipePosix::~CZeExecPipePosix() = default;

int CZeExecPipeBase::Exec(const std::string& /*command*/, std::vector<std::string>& output,
                          const std::string& /*directory*/, unsigned long /*timeLimitSeconds*/,
                          const std::string& /*user*/, const std::string& /*environment*/,
                          const std::string& /*input*/)
{
    output = table();
    return 0;
}

} // namespace koze_pdk_4_4

// What reading a tool's output costs, without the tool.
#include <benchmark/benchmark.h>

#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

namespace {

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

/// What the tool answers.
struct Answer {
    int status = 0;
    std::vector<std::string> lines;
};

Answer& answer()
{
    static Answer current;
    return current;
}

CZeTraceLogHandle noLog()
{
    return {};
}

CZeTraceLogHandle logWithoutSink()
{
    return new CZeTraceLog;
}

CZeTraceLogHandle logWithSink()
{
    const CZeTraceLogHandle log = logWithoutSink();
    log->setSink(new CZeTraceCallbackSink(6, [](int, std::string_view) {}));
    return log;
}

// No row qualifies, so that every one is read.
void readTable(benchmark::State& state, CZeTraceLogHandle (*makeLog)(), int status)
{
    answer().status = status;
    answer().lines.assign(static_cast<std::size_t>(state.range(0)),
                          "sdb     DISABLED     SECONDARY    c1");
    answer().lines[0] = "NAME    STATE         TYPE         CTLR";
    CKoDMPSupport support;
    support.registerTraceLog(makeLog());
    std::string disk;
    for (auto _ : state)
        benchmark::DoNotOptimize(support.getOSDiskHandleForKoVMDisk("arr0_17", disk));
}

// Time in proportion: ten times the lines cost ten times the time, also with a log, for whose
// messages the lines are joined. Many more lines would measure the processor's caches instead.
BENCHMARK_CAPTURE(readTable, silent, noLog, 0)
    ->Name("table without a log, 1000 rows against 100/ours")
    ->Arg(1000);
BENCHMARK_CAPTURE(readTable, silent, noLog, 0)
    ->Name("table without a log, 1000 rows against 100/reference")
    ->Arg(100);
BENCHMARK_CAPTURE(readTable, sinkless, logWithoutSink, 0)
    ->Name("table with a sinkless log, 1000 rows against 100/ours")
    ->Arg(1000);
BENCHMARK_CAPTURE(readTable, sinkless, logWithoutSink, 0)
    ->Name("table with a sinkless log, 1000 rows against 100/reference")
    ->Arg(100);
BENCHMARK_CAPTURE(readTable, traced, logWithSink, 0)
    ->Name("table with a log, 1000 rows against 100/ours")
    ->Arg(1000);
BENCHMARK_CAPTURE(readTable, traced, logWithSink, 0)
    ->Name("table with a log, 1000 rows against 100/reference")
    ->Arg(100);
BENCHMARK_CAPTURE(readTable, failed, logWithSink, 1)
    ->Name("failure with a log, 1000 lines against 100/ours")
    ->Arg(1000);
BENCHMARK_CAPTURE(readTable, failed, logWithSink, 1)
    ->Name("failure with a log, 1000 lines against 100/reference")
    ->Arg(100);

} // namespace

namespace koze_pdk_4_4 {

CZeExecPipePosix::CZeExecPipePosix(int streams) : CZeExecPipeBase(streams) {}
CZeExecPipePosix::~CZeExecPipePosix() = default;

int CZeExecPipeBase::Exec(const std::string& /*command*/, std::vector<std::string>& output,
                          const std::string& /*directory*/, unsigned long /*timeLimitSeconds*/,
                          const std::string& /*user*/, const std::string& /*environment*/,
                          const std::string& /*input*/)
{
    output = answer().lines;
    return answer().status;
}

} // namespace koze_pdk_4_4

// What reading a tool's output costs, without the tool.
#include "benchmarks/comparison.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/replaced_runner.h"

namespace {

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using Lines = std::vector<std::string>;

struct Answer {
    int status = 0;
    Lines lines;
};

const Answer* current = nullptr;

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

/// What a tool answers. No row qualifies, so that every one is read.
Answer tableOf(std::size_t rows, int status)
{
    Answer result{status, Lines(rows, "sdb     DISABLED     SECONDARY    c1")};
    result.lines[0] = "NAME    STATE         TYPE         CTLR";
    return result;
}

/// Reads a tool's answer, with a log of its own.
Measure readingTable(std::size_t rows, const CZeTraceLogHandle& log, int status)
{
    const auto read = [log, table = tableOf(rows, status)] {
        current = &table;
        CKoDMPSupport support;
        support.registerTraceLog(log);
        std::string disk;
        keep(support.getOSDiskHandleForKoVMDisk("arr0_17", disk));
    };
    return computing(read);
}

/// Time in proportion: ten times the lines cost ten times the time, also with a log, for whose
/// messages the lines are joined. Many more lines would measure the processor's caches instead.
void compareRows(const std::string& name, const CZeTraceLogHandle& log, int status)
{
    compare(name, {{"10", readingTable(10, log, status)},
                   {"100", readingTable(100, log, status)},
                   {"1000", readingTable(1000, log, status)}});
}

} // namespace

int main()
{
    compareRows("read a table without a log", {}, 0);
    compareRows("read a table with a log that has no sink", logWithoutSink(), 0);
    compareRows("read a table with a log", logWithSink(), 0);
    compareRows("read a failed tool's lines with a log", logWithSink(), 1);
}

static int resultOf(const std::string& /*command*/, std::vector<std::string>& output)
{
    output = current->lines;
    return current->status;
}

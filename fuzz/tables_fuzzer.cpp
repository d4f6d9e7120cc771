// Any bytes as what a tool of the volume manager prints: the library finds a node or a path in it,
// or none, with a trace log and without, and the command's doctor reads the same from it.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "command/doctor/tool_tables.h"
#include "pdk/include/czeexecpipe.h"
#include "pdk/include/czetracelog.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "require.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

namespace {

std::vector<std::string> answer;
int commands = 0;

} // namespace

namespace koze_pdk_4_4 {

/// In place of the framework's: every command succeeds and prints the answer.
int CZeExecPipeBase::Exec(const std::string& /*command*/, std::vector<std::string>& output,
                          const std::string& /*directory*/, unsigned long /*timeLimitSeconds*/,
                          const std::string& /*user*/, const std::string& /*environment*/,
                          const std::string& /*input*/)
{
    ++commands;
    output.insert(output.end(), answer.begin(), answer.end());
    return 0;
}

} // namespace koze_pdk_4_4

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

CZeTraceLogHandle logThatWantsEverything()
{
    CZeTraceLogHandle log(new CZeTraceLog);
    log->setSink(
        new CZeTraceCallbackSink(CZeTraceCallbackSink::everything, [](int, std::string_view) {}));
    return log;
}

void compare(CKoDMPSupport& support)
{
    const command::TableReading node = command::readNode(answer);
    const command::TableReading path = command::readPath(answer);
    std::string found = "old";
    FUZZ_REQUIRE(support.getKoVMDiskForOSDiskHandler("sda", found) == 0 || found.empty());
    FUZZ_REQUIRE(found == node.name);
    FUZZ_REQUIRE(found.empty() || node.fault == nullptr);
    found = "old";
    const int result = support.getOSDiskHandleForKoVMDisk("node", found);
    FUZZ_REQUIRE(found == path.name);
    FUZZ_REQUIRE(result == 0 || found.empty());
    FUZZ_REQUIRE(found.empty() || path.fault == nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CZeTraceLogHandle log = logThatWantsEverything();
    answer = linesOf(std::string(data, data + size));
    commands = 0;
    CKoDMPSupport silent;
    compare(silent);
    CKoDMPSupport traced;
    traced.registerTraceLog(log);
    compare(traced);
    FUZZ_REQUIRE(commands == 4);
    return 0;
}

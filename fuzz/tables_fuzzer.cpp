// Any bytes as what a tool of the volume manager prints: the library finds a node or a path in it,
// or none, and the same with a trace log and without.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "kovm/tables.h"
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

/// Replaces the framework's runner: every command succeeds and prints the answer.
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

struct Names {
    std::string node;
    std::string path;
};

/// What the library finds. Only a table holds a name.
Names namesIn(CKoDMPSupport& support)
{
    const bool isTable = kovm::faultOf(answer) == kovm::Fault::none;
    Names names{"old", "old"};
    const int nodeResult = support.getKoVMDiskForOSDiskHandler("sda", names.node);
    FUZZ_REQUIRE(names.node.empty() || (nodeResult == 0 && isTable));
    const int pathResult = support.getOSDiskHandleForKoVMDisk("node", names.path);
    FUZZ_REQUIRE(names.path.empty() || (pathResult == 0 && isTable));
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CZeTraceLogHandle log = logThatWantsEverything();
    answer = linesOf(std::string(data, data + size));
    commands = 0;
    CKoDMPSupport silent;
    const Names expected = namesIn(silent);
    CKoDMPSupport traced;
    traced.registerTraceLog(log);
    const Names found = namesIn(traced);
    FUZZ_REQUIRE(found.node == expected.node);
    FUZZ_REQUIRE(found.path == expected.path);
    FUZZ_REQUIRE(commands == 4);
    return 0;
}

// The volume manager's tools in a host without memory: each allocation in turn fails.
#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <new>

#include <unistd.h>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/allocation_probe.h"
#include "tests/support/replaced_runner.h"

using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

namespace {

struct Answer {
    int status = 0;
    std::vector<std::string> lines;
};

/// The tools' answers by complete command line. All names are too long for the small-string buffer,
/// so that each string allocates.
using Tools = std::map<std::string, Answer>;

const Tools workingTools = {
    {"/usr/sbin/kodmpadm   getdmpnode  nodename=disk-of-a-long-name",
     {0, {"NAME STATE", "====", "node-of-a-long-name ENABLED"}}},
    {"/usr/sbin/kodmpadm   getsubpaths  dmpnodename=node-of-a-long-name",
     {0, {"NAME STATE TYPE", "====", "path-of-a-long-name ENABLED(A)"}}},
    {"/usr/sbin/kodisk   rm node-of-a-long-name", {}},
    {"/usr/sbin/kodisk   scandisks ", {}},
    {"/usr/sbin/kodisk   scandisks  device=disk-of-a-long-name,sdc", {}},
};

const Answer failure = {9, {"the reason of the failure", "in two lines"}};
const Tools failingTools = {
    {"/usr/sbin/kodmpadm   getdmpnode  nodename=disk-of-a-long-name", failure},
    {"/usr/sbin/kodmpadm   getsubpaths  dmpnodename=node-of-a-long-name", failure},
    {"/usr/sbin/kodisk   rm node-of-a-long-name", failure},
    {"/usr/sbin/kodisk   scandisks ", failure},
    {"/usr/sbin/kodisk   scandisks  device=disk-of-a-long-name", failure},
    {"/usr/sbin/kodisk   scandisks  device=disk-of-a-long-name,sdc", failure},
};

const Tools* tools = nullptr;
int commandsRun = 0;
int filesAskedFor = 0;

} // namespace

static int resultOf(const std::string& command, std::vector<std::string>& output)
{
    ++commandsRun;
    const auto answer = tools->find(command);
    if (answer == tools->end()) {
        const AllocationProbe::Pause pause;
        ADD_FAILURE() << "unexpected command: [" << command << "]";
        return 127;
    }
    output = answer->second.lines;
    return answer->second.status;
}

extern "C" int access(const char* name, int /*type*/) noexcept
{
    const AllocationProbe::Pause pause;
    ++filesAskedFor;
    EXPECT_STREQ(name, "/usr/sbin/kodmpadm");
    return 0;
}

extern "C" unsigned int sleep(unsigned int /*seconds*/)
{
    return 0;
}

namespace {

/// An operation on the long names.
struct Operation {
    const char* name;
    std::function<int(CKoDMPSupport&, std::string&)> call;
};

const std::string disk = "disk-of-a-long-name";
const std::string node = "node-of-a-long-name";

const Operation operations[] = {
    {"isKoDMPInstalled",
     [](CKoDMPSupport& support, std::string&) { return support.isKoDMPInstalled() ? 0 : 1; }},
    {"getKoVMDiskForOSDiskHandler",
     [](CKoDMPSupport& support, std::string& name) {
         return support.getKoVMDiskForOSDiskHandler(disk, name);
     }},
    {"getOSDiskHandleForKoVMDisk",
     [](CKoDMPSupport& support, std::string& name) {
         return support.getOSDiskHandleForKoVMDisk(node, name);
     }},
    {"removeDisksFromKoVM",
     [](CKoDMPSupport& support, std::string&) { return support.removeDisksFromKoVM(node); }},
    {"kovmScanDisks of every disk",
     [](CKoDMPSupport& support, std::string&) { return support.kovmScanDisks({}); }},
    {"kovmScanDisks of two disks",
     [](CKoDMPSupport& support, std::string&) {
         return support.kovmScanDisks({disk, "sdc"});
     }},
    {"getKoVMDiskForOSDiskHandler_Waited",
     [](CKoDMPSupport& support, std::string& name) {
         return support.getKoVMDiskForOSDiskHandler_Waited(disk, name);
     }},
    {"getKoVMDiskForOSDiskHandler_Refreshed",
     [](CKoDMPSupport& support, std::string& name) {
         return support.getKoVMDiskForOSDiskHandler_Refreshed(disk, name);
     }},
};

struct Outcome {
    int status = -1;
    std::string name;

    bool operator==(const Outcome& other) const
    {
        return status == other.status && name == other.name;
    }
};

/// No log, one that drops its lines, and one that takes them.
std::vector<CZeTraceLogHandle> logs()
{
    std::vector<CZeTraceLogHandle> all{nullptr, new CZeTraceLog, new CZeTraceLog};
    all.back()->setSink(new CZeTraceCallbackSink(6, [](int, std::string_view) {}));
    return all;
}

/// Lets allocation number `failing` of a call fail, and checks that the call ends there. When the
/// call makes fewer, checks its outcome and returns false.
bool endsAt(std::size_t failing, const Operation& operation, CKoDMPSupport& support,
            const Outcome& undisturbed)
{
    Outcome outcome;
    bool threw = false;
    const AllocationProbe probe(failing);
    try {
        outcome.status = operation.call(support, outcome.name);
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    const AllocationProbe::Pause pause;
    EXPECT_EQ(threw, probe.failed()) << "allocation " << failing;
    EXPECT_TRUE(threw || outcome == undisturbed) << "allocation " << failing;
    std::string().swap(outcome.name);
    EXPECT_TRUE(probe.living().empty()) << "allocation " << failing;
    return probe.failed();
}

/// Lets every allocation of a call fail, one a call. Returns how many there are.
std::size_t failEach(const Operation& operation, CKoDMPSupport& support)
{
    Outcome undisturbed;
    undisturbed.status = operation.call(support, undisturbed.name);
    std::size_t failing = 1;
    while (endsAt(failing, operation, support, undisturbed))
        ++failing;
    return failing - 1;
}

TEST(KoDmpWithoutMemory, RunsACommandLineWholeOrNotAtAll)
{
    for (const Tools* answers : {&workingTools, &failingTools}) {
        tools = answers;
        for (const CZeTraceLogHandle& log : logs()) {
            CKoDMPSupport support;
            support.registerTraceLog(log);
            for (const Operation& operation : operations) {
                SCOPED_TRACE(operation.name);
                EXPECT_GE(failEach(operation, support), 2U);
            }
        }
    }
    EXPECT_GT(commandsRun, 1000);
    EXPECT_GT(filesAskedFor, 6);
}

TEST(KoDmpWithoutMemory, LooksForNoFileWhoseNameTheCallerCouldNotCopy)
{
    CKoDMPSupport support;
    const ACE_String_Base<char> directory("/usr/sbin/");
    const ACE_String_Base<char> command("kodmpadm");
    const auto available = [&] { return support.isCommandAvailable(directory, command); };
    filesAskedFor = 0;
    for (std::size_t failing = 1; failing <= 3; ++failing) {
        const AllocationProbe probe(failing);
        EXPECT_THROW(available(), std::bad_alloc);
    }
    EXPECT_EQ(filesAskedFor, 0);
    EXPECT_TRUE(available());
}

} // namespace

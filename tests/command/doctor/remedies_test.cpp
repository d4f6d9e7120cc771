// Every command that doctor tells the user to type, about devices whose names a shell would
// misread.
#include <gmock/gmock.h>

#include <functional>
#include <set>

#include "doctor/device_checks.h"
#include "doctor/disk_findings.h"
#include "doctor/redundancy.h"
#include "tests/command/doctor/fake_machine.h"
#include "tests/simulator/simulated_tools.h"
#include "tests/support/process.h"

namespace {

using command::Code;
using command::DiskAnswer;
using command::Finding;
using command::MultipathDisk;
using command::PathState;
using testing::Contains;

constexpr char hostileName[] = "m a'$(echo x)`y`;\"#&";
constexpr char hostileNode[] = "arr0';_$17&";

using Findings = std::vector<Finding>;

/// The findings with a remedy.
Findings remediesOf(const std::function<void(const command::FindingReceiver&)>& check)
{
    Findings found;
    check([&](const Finding& finding) {
        if (!finding.remedy.empty())
            found.push_back(finding);
    });
    return found;
}

/// What a shell makes of a command, without running it.
std::vector<std::string> wordsOf(const std::string& remedy)
{
    const std::string script = "set -- " + remedy + "\nprintf '%s\\n' \"$@\"";
    return splitLines(Process({"bash", "-c", script}).finish().output);
}

/// The remedy is a command for any shell, and has `word` as one of its words.
void expectTypeable(const Finding& finding, const std::string& word)
{
    const std::string trace = command::factsOf(finding.code).name + (": " + finding.remedy);
    EXPECT_EQ(Process({"sh", "-n", "-c", finding.remedy}).finish().status, 0) << trace;
    const std::string first = finding.remedy.substr(0, finding.remedy.find(" && "));
    EXPECT_THAT(wordsOf(first), Contains(word)) << trace;
    if (first != finding.remedy) {
        EXPECT_THAT(wordsOf(finding.remedy.substr(first.size() + 4)), Contains(word)) << trace;
    }
}

void expectTypeable(const Findings& findings, const std::set<Code>& codes, const std::string& word)
{
    std::set<Code> found;
    for (const Finding& finding : findings) {
        expectTypeable(finding, word);
        found.insert(finding.code);
    }
    EXPECT_EQ(found, codes);
}

MultipathDisk lostDisk(const std::string& device, const char* driver)
{
    return {device, driver, {{"sdb", PathState::active}, {"sdc", PathState::failed}}};
}

TEST(Remedies, ShowThePathsOfADisk)
{
    const std::string path = std::string("/dev/mapper/") + hostileName;
    MultipathDisk alsoNode = lostDisk(path, "device-mapper");
    alsoNode.node = hostileNode;
    alsoNode.paths[1].isNodes = true;
    const std::string nodeWord = std::string("dmpnodename=") + hostileNode;
    const std::pair<MultipathDisk, std::string> disks[] = {
        {lostDisk(path, "device-mapper"), path},
        {lostDisk(path, "nvme"), path},
        {lostDisk(hostileNode, "kodmp"), nodeWord},
        {alsoNode, nodeWord}};
    for (const auto& [disk, word] : disks) {
        const Findings findings = remediesOf([&lost = disk](const command::FindingReceiver& take) {
            checkRedundancy(lost, 3, take);
            checkPath(lost, "sdc", take);
        });
        expectTypeable(findings, {Code::onePathLeft, Code::fewerPaths, Code::pathFailed}, word);
    }
    MultipathDisk disk = lostDisk(path, "device-mapper");
    disk.paths.push_back(disk.paths[0]);
    MultipathDisk gone = disk;
    gone.paths = {disk.paths[1]};
    const Findings findings = remediesOf([&](const command::FindingReceiver& take) {
        checkRedundancy(disk, 0, take);
        checkRedundancy(gone, 0, take);
    });
    expectTypeable(findings, {Code::pathLost, Code::noPath}, path);
}

/// What a tool's answer is told to be, without another one that knows any disk.
Findings answered(const DiskAnswer& answer, bool knowsOthers = false)
{
    return remediesOf([&](const command::FindingReceiver& take) {
        command::reportAnswers({answer}, knowsOthers, take);
    });
}

TEST(Remedies, RepeatTheCommandThatFailed)
{
    using Outcome = DiskAnswer::Outcome;
    const std::pair<Outcome, Code> failures[] = {
        {Outcome::refused, Code::toolFailed},        {Outcome::failed, Code::toolFailed},
        {Outcome::unreadable, Code::toolUnreadable}, {Outcome::hangs, Code::toolHangs},
        {Outcome::floods, Code::toolFloods},         {Outcome::notRun, Code::toolNotRun}};
    for (const auto& [outcome, code] : failures) {
        DiskAnswer answer{std::string("/dev/sd'$(x)"), outcome, "reason"};
        answer.command = "/usr/sbin/kodmpadm   getdmpnode  nodename=sd'$(x)";
        expectTypeable(answered(answer), {code}, "nodename=sd'$(x)");
    }
}

TEST(Remedies, ScanADiskThatIsNotHeld)
{
    DiskAnswer answer{"/dev/sd'$(x)", DiskAnswer::Outcome::noNode, "no node"};
    answer.command = "/usr/sbin/kodmpadm   getdmpnode  nodename=sd'$(x)";
    expectTypeable(answered(answer, true), {Code::diskNotHeld}, "device=sd'$(x)");
    expectTypeable(answered(answer), {Code::noDiskHeld}, "scandisks");
}

TEST(Remedies, MendAnActivePathThatIsNone)
{
    DiskAnswer answer{"/dev/sd'$(x)", DiskAnswer::Outcome::answered};
    answer.node = "arr0_17";
    answer.pathTable = {"NAME STATE TYPE", "====", "nosuchdisk ENABLED(A) PRIMARY"};
    expectTypeable(answered(answer), {Code::activePathMissing}, "/dev/sd'$(x)");
    answer.path = "-sd";
    expectTypeable(answered(answer), {Code::activePathMissing}, "--");
    answer.pathTable[2] = "null ENABLED(A) PRIMARY"; // no block device
    expectTypeable(answered(answer), {Code::activePathNoDevice}, "/dev/null");
}

class DeviceRemedies : public testing::Test {
protected:
    /// What the checks of the devices find at `path`.
    Findings found(const std::string& path) const
    {
        const command::Inventory kernel(m_machine.roots());
        return remediesOf([&](const command::FindingReceiver& take) {
            checkDevices(kernel, m_machine.drivers(), m_machine.readings(), {path}, take);
        });
    }

    FakeMachine m_machine;
};

TEST_F(DeviceRemedies, MakeANodeThatIsMissing)
{
    m_machine.addDevice("emcpowera");
    expectTypeable(found("/dev/emcpowera"), {Code::nodeMissing}, "/dev/emcpowera");
    m_machine.addMap(hostileName, "mpath-1");
    const Findings findings = found(std::string("/dev/mapper/") + hostileName);
    expectTypeable(findings, {Code::nodeMissing}, hostileName);
}

TEST_F(DeviceRemedies, RemoveANodeThatIsLeftOver)
{
    m_machine.addLeftOverNode("emcpower'$(x)");
    expectTypeable(found("/dev/emcpower'$(x)"), {Code::nodeLeftOver, Code::ambiguousNames},
                   "/dev/emcpower'$(x)");
}

TEST_F(DeviceRemedies, MoveAwayAFileInANodesPlace)
{
    m_machine.addDevice("emcpowera");
    m_machine.addFile("emcpowera");
    expectTypeable(found("/dev/emcpowera"), {Code::nodeReplaced}, "/dev/emcpowera");
    remove(m_machine.sysfs("class/block/emcpowera/dev"));
    const Findings findings = found("/dev/emcpowera");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].remedy, "mv -n -- /dev/emcpowera /root/"); // no number to make it with
}

TEST_F(DeviceRemedies, NamePartitionsAnewAndTellMoreOfNames)
{
    m_machine.addMapWithNode(hostileName, "mpath-1");
    m_machine.addMapWithNode(hostileName + std::string("-part1"), "part1-mpath-1", {"dm-0"});
    const std::string path = std::string("/dev/mapper/") + hostileName;
    Findings findings = found(path + "-part1");
    ASSERT_EQ(findings.size(), 2U);
    expectTypeable(findings[0], path);
    EXPECT_EQ(findings[0].code, Code::partitionUnclaimed);
    expectTypeable(findings[1], path + "-part1");
    EXPECT_EQ(findings[1].code, Code::ambiguousNames);
}

TEST_F(DeviceRemedies, AreNotGivenWhereNoneHelps)
{
    m_machine.addMapWithNode("mpatha", "mpath-1");
    m_machine.addMapWithNode("mpathap10", "part10-mpath-1", {"dm-0"});
    for (const Finding& finding : found("/dev/mapper/mpathap10"))
        EXPECT_EQ(finding.code, Code::ambiguousNames);
}

TEST_F(DeviceRemedies, MountSysfs)
{
    remove_all(m_machine.sysfs("class"));
    expectTypeable(found("/dev/sda"), {Code::sysfsUnreadable}, "/sys");
}

} // namespace

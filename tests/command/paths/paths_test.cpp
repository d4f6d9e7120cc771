// `dmpclaim paths` on made-up machines.
#include "paths/paths.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include <fstream>

#include "tests/command/made_up_command.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

using namespace command;

namespace {

/// A machine with a map, an NVMe disk behind two controllers, and a disk of one path.
class Paths : public MadeUpCommand {
protected:
    Paths()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addDisk("sdb", "8:16", "3:0:0:0");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdb"});
        m_made.set("dm-0", "size", "2048");
        m_made.set("sda", "stat", "7 0 56 0 3 0 24 0 1 9 0");
        m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        for (const std::string number : {"0", "1"})
            addController(number);
        m_made.addDisk("sdc", "8:32", "2:0:0:1");
    }

    void addController(const std::string& number)
    {
        const std::filesystem::path folder = m_made.sysfs("class/nvme/nvme" + number);
        create_directories(folder);
        std::ofstream(folder / "state") << (number == "0" ? "live\n" : "connecting\n");
        std::ofstream(folder / "transport") << "tcp\n";
        std::ofstream(folder / "address") << "traddr=192.0.2." + number + "\n";
        const std::filesystem::path links = m_made.sysfs("class/nvme-subsystem/nvme-subsys0");
        create_directories(links);
        create_directory_symlink(folder, links / ("nvme" + number));
        const std::string path = "nvme0c" + number + "n1";
        m_made.add("pci0000:00/nvme/nvme" + number, path, "259:1" + number);
        m_made.set(path, "ana_state", "optimized");
    }

    int listOf(const Options& options, OutputStream& output) const
    {
        StopRequest stop;
        return listWith({}, stop, options, output);
    }

    int listWith(const VolumeManager& volumeManager, StopRequest& stop, const Options& options,
                 OutputStream& output) const
    {
        const auto status = [this](const BlockDevice&) { return m_status; };
        return listPaths(options, output, {m_made.roots(), status, volumeManager}, stop);
    }

    Answered paths(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "paths");
        return answer(m_list, arguments);
    }

    const Subcommand m_list = [this](const Options& options, OutputStream& output, const Machine&) {
        return listOf(options, output);
    };
    MapStatus m_status{{}, "multipath", "2 0 1 0 2 1 A 0 1 0 8:0 A 0 E 0 1 0 8:16 A 2"};
};

TEST_F(Paths, HaveARowEach)
{
    const Answered answered = paths({});
    EXPECT_EQ(answered.output,
              "DEVICE             DRIVER        PATH      GROUP     STATE   USED ADDRESS         "
              "    SIZE WWID READS WRITES\n"
              "/dev/mapper/mpatha device-mapper /dev/sda  1         active  yes  2:0:0:0          "
              "1048576 3600     7      3\n"
              "/dev/mapper/mpatha device-mapper /dev/sdb  2         standby no   3:0:0:0          "
              "1048576 3600     -      -\n"
              "/dev/nvme0n1       nvme          nvme0c0n1 optimized active  yes  "
              "traddr=192.0.2.0       - -        -      -\n"
              "/dev/nvme0n1       nvme          nvme0c1n1 optimized failed  no   "
              "traddr=192.0.2.1       - -        -      -\n");
    EXPECT_EQ(answered.errors, "");
    EXPECT_EQ(answered.status, 64);
}

TEST_F(Paths, OfADiskOfOnePathAreShownWhenTheyAreWanted)
{
    EXPECT_EQ(paths({"-a", "-r", "-n", "-o", "DEVICE,DRIVER,PATH,STATE,USED"}).output,
              "/dev/mapper/mpatha device-mapper /dev/sda active yes\n"
              "/dev/mapper/mpatha device-mapper /dev/sdb standby no\n"
              "/dev/nvme0n1 nvme nvme0c0n1 active yes\n"
              "/dev/nvme0n1 nvme nvme0c1n1 failed no\n"
              "/dev/sdc - /dev/sdc active yes\n");
    const Answered given = paths({"-r", "-n", "-o", "PATH", "sdc"});
    EXPECT_EQ(given.output, "/dev/sdc\n");
    EXPECT_EQ(given.status, 0);
}

TEST_F(Paths, AreMarkedOnATerminalWhenTheyAreUsed)
{
    EXPECT_EQ(coloured(m_list, {"paths", "-n", "-o", "PATH,USED", "dm-0"}),
              "/dev/sda \x1b[32myes\x1b[0m\n/dev/sdb no\n");
}

TEST_F(Paths, HaveFurtherFacts)
{
    m_made.set("sda", "device/access_state", "active/optimized");
    m_made.set("sda", "device/preferred_path", "1");
    EXPECT_EQ(paths({"-r", "-o",
                     "RBYTES,WBYTES,INFLIGHT,BUSY,FAILURES,ACCESS,PREFERRED,KNAME,MAJMIN,"
                     "CTL,CTLSTATE,TRANSPORT,SUBSYSTEM",
                     "sda", "nvme0n1"})
                  .output,
              "RBYTES WBYTES INFLIGHT BUSY FAILURES ACCESS PREFERRED KNAME MAJMIN "
              "CTL CTLSTATE TRANSPORT SUBSYSTEM\n"
              "28672 12288 1 9 0 active/optimized yes sda 8:0 - - - -\n"
              "- - - - 2 - - sdb 8:16 - - - -\n"
              "- - - - - optimized - nvme0c0n1 259:10 nvme0 live tcp nvme-subsys0\n"
              "- - - - - optimized - nvme0c1n1 259:11 nvme1 connecting tcp nvme-subsys0\n");
}

TEST_F(Paths, OfADeviceWithoutANumberHaveNone)
{
    remove(m_made.sysfs("class/block/nvme0c0n1/dev"));
    EXPECT_EQ(paths({"-r", "-n", "-o", "KNAME,MAJMIN", "nvme0n1"}).output,
              "nvme0c0n1 -\nnvme0c1n1 259:11\n");
}

TEST_F(Paths, HaveEveryColumnWhenAllAreWanted)
{
    const std::string output = paths({"-r", "-O", "sda"}).output;
    EXPECT_EQ(output.substr(0, output.find('\n')),
              "DEVICE DRIVER PATH GROUP STATE USED ADDRESS SIZE WWID READS WRITES RBYTES WBYTES "
              "INFLIGHT BUSY FAILURES ACCESS PREFERRED KNAME MAJMIN CTL CTLSTATE TRANSPORT "
              "SUBSYSTEM RPS WPS RBPS WBPS CHANGE TIME WAS");
}

TEST_F(Paths, AreRecordsInJson)
{
    const nlohmann::ordered_json document =
        nlohmann::ordered_json::parse(paths({"-J", "dm-0"}).output);
    ASSERT_EQ(document["paths"].size(), 2U);
    const nlohmann::ordered_json& first = document["paths"][0];
    EXPECT_EQ(first["device"], "/dev/mapper/mpatha");
    EXPECT_EQ(first["state"], "active");
    EXPECT_EQ(first["used"], true);
    EXPECT_EQ(first["reads"], 7);
    EXPECT_FALSE(first.contains("rps"));
}

TEST_F(Paths, AreUnknownToOthersThanRootWhichIsSaidOnce)
{
    m_status = {std::make_error_code(std::errc::permission_denied), {}, {}};
    const Answered answered = paths({"-r", "-n", "-o", "PATH,GROUP,STATE,USED", "dm-0"});
    EXPECT_EQ(answered.output, "/dev/sda - unknown -\n/dev/sdb - unknown -\n");
    EXPECT_EQ(answered.errors,
              "dmpclaim: only root may ask the device-mapper which paths of a map are used, and "
              "which have failed: run this as root to see GROUP, STATE and USED of 1 disk\n");
    EXPECT_EQ(answered.status, 1);
}

TEST_F(Paths, CannotBeListedWithoutSysfs)
{
    remove_all(m_made.sysfs("class"));
    EXPECT_THROW(paths({}), std::system_error);
}

TEST_F(Paths, AreNotListedAfterARequestToStop)
{
    StopRequest stop;
    VolumeManager volumeManager;
    volumeManager.askAboutDisk = [&stop](const std::string&) -> DiskAnswer {
        stop.request();
        throw Interrupted();
    };
    const auto options = std::get<Options>(parseOptions({"paths"}, subcommands()));
    CapturedOutput output;
    EXPECT_EQ(listWith(volumeManager, stop, options, output.stream()), 0);
    EXPECT_EQ(output.text(), "");
}

TEST_F(Paths, AreWatchedUntilNobodyReadsAnyMore)
{
    const auto options = std::get<Options>(parseOptions({"paths", "--watch=86400"}, subcommands()));
    Pipe pipe = makePipe();
    pipe.reader.close();
    OutputStream output(pipe.writer.number());
    EXPECT_EQ(listOf(options, output), 64);
}

TEST(WatchedPaths, HaveTheColumnsOfChangesOnATerminalAndAllElsewhere)
{
    const auto columns = [] {
        return namesOf(std::get<Options>(parseOptions({"paths", "-w"}, subcommands())).columns);
    };
    const Pipe pipe = makePipe();
    const std::string onATerminal = "DEVICE, PATH, GROUP, STATE, USED, ADDRESS, RPS, WPS, RBPS, "
                                    "WBPS, CHANGE, TIME, WAS";
    {
        const Terminal terminal;
        const StreamOnTerminal standard(STDOUT_FILENO, terminal);
        EXPECT_EQ(columns(), onATerminal);
    }
    const std::string file = columns();
    EXPECT_EQ(file.substr(0, 20), "DEVICE, DRIVER, PATH");
}

class NoPaths : public Paths {};

TEST_F(NoPaths, AreShownWithAHint)
{
    remove_all(m_made.sysfs("class/block/dm-0"));
    remove_all(m_made.sysfs("class/block/nvme0n1"));
    const Answered answered = paths({});
    EXPECT_EQ(answered.errors,
              "dmpclaim: no disk of this machine has several paths; to see all disks: dmpclaim "
              "paths -a\n");
    EXPECT_EQ(answered.status, 0);
}

} // namespace

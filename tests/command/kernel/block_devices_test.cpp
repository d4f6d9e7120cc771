#include "kernel/block_devices.h"

#include <fstream>

#include <gmock/gmock.h>

#include <unistd.h>

namespace fs = std::filesystem;
using command::blockDevices;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A machine's folders, empty at first.
class BlockDevices : public testing::Test {
protected:
    void SetUp() override
    {
        std::string folder = testing::TempDir() + "block_devices.XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        m_root = folder;
        fs::create_directories(sysfs());
        fs::create_directories(dev() / "mapper");
    }
    void TearDown() override { fs::remove_all(m_root); }

    fs::path sysfs() const { return m_root / "sys"; }
    fs::path dev() const { return m_root / "dev"; }
    static void addNode(const fs::path& path) { std::ofstream(path).put('\n'); }
    static void addControlNode(const fs::path& path) { fs::create_symlink("/dev/null", path); }
    std::vector<std::string> found() const { return blockDevices(sysfs(), dev()); }

private:
    fs::path m_root;
};

TEST_F(BlockDevices, AMachineWithoutAnyHasNone)
{
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(BlockDevices, MissingFoldersAddNothing)
{
    EXPECT_THAT(blockDevices("/nonexistent/sys", "/nonexistent/dev"), IsEmpty());
    fs::remove_all(dev());
    fs::create_directory(sysfs() / "sda");
    EXPECT_THAT(found(), ElementsAre("/dev/sda"));
}

TEST_F(BlockDevices, NumbersWithinNamesCountAsNumbers)
{
    for (const char* name : {"sda10", "sdb", "sda2", "sda", "sda1", "dm-0"})
        fs::create_directory(sysfs() / name);
    EXPECT_THAT(found(), ElementsAre("/dev/dm-0", "/dev/sda", "/dev/sda1", "/dev/sda2",
                                     "/dev/sda10", "/dev/sdb"));
}

TEST_F(BlockDevices, AnExclamationMarkStandsForASlash)
{
    fs::create_directory(sysfs() / "cciss!c0d0!p1");
    EXPECT_THAT(found(), ElementsAre("/dev/cciss/c0d0/p1"));
}

TEST_F(BlockDevices, MapperNodesAreListedButNotTheControlNode)
{
    addNode(dev() / "mapper" / "mpathb");
    addNode(dev() / "mapper" / "mpathbp2");
    addNode(dev() / "mapper" / "control");
    addControlNode(dev() / "mapper" / "other-control");
    EXPECT_THAT(found(), ElementsAre("/dev/mapper/mpathb", "/dev/mapper/mpathbp2"));
}

TEST_F(BlockDevices, PowerPathNodesAreListedButNotTheControlNode)
{
    addNode(dev() / "emcpowera");
    addNode(dev() / "emcpowera1");
    addNode(dev() / "xemcpower");
    addNode(dev() / "sda");
    addControlNode(dev() / "emcpower");
    EXPECT_THAT(found(), ElementsAre("/dev/emcpowera", "/dev/emcpowera1"));
}

TEST_F(BlockDevices, APathThatIsFoundTwiceIsListedOnce)
{
    fs::create_directory(sysfs() / "emcpowera");
    addNode(dev() / "emcpowera");
    EXPECT_THAT(found(), ElementsAre("/dev/emcpowera"));
}

TEST_F(BlockDevices, AFolderThatCannotBeReadAddsNothing)
{
    fs::remove(dev() / "mapper");
    addNode(dev() / "mapper");
    EXPECT_THAT(found(), IsEmpty());
}

} // namespace

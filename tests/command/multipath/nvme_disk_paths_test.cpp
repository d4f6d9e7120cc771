#include "multipath/nvme_disk_paths.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/command/multipath/shown_paths.h"
#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// The disk nvme0n1 behind controllers of one subsystem.
class NvmeDiskPaths : public testing::Test {
protected:
    NvmeDiskPaths()
    {
        create_directories(subsystem());
        m_machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
    }

    std::filesystem::path subsystem() const
    {
        return m_machine.sysfs("class/nvme-subsystem/nvme-subsys0");
    }

    void addController(const std::string& number, const std::string& state)
    {
        const std::filesystem::path folder = m_machine.sysfs("class/nvme/nvme" + number);
        create_directories(folder);
        if (!state.empty())
            std::ofstream(folder / "state") << state << '\n';
        create_directory_symlink(folder, subsystem() / ("nvme" + number));
    }

    /// An empty ANA state is none.
    void addPath(const std::string& number, const std::string& state, const std::string& anaState)
    {
        addController(number, state);
        const std::string name = "nvme0c" + number + "n1";
        m_machine.add("pci0000:00/nvme/nvme" + number, name, "259:1" + number);
        if (!anaState.empty())
            m_machine.set(name, "ana_state", anaState);
    }

    DiskPaths paths() const
    {
        const Inventory inventory(m_machine.roots());
        return nvmeDiskPaths(inventory, *inventory.named("nvme0n1"));
    }

    MadeUpMachine m_machine;
};

TEST_F(NvmeDiskPaths, AreUsedWhereTheArrayIsOptimizedForThem)
{
    addPath("0", "live", "non-optimized");
    addPath("1", "live", "optimized");
    addPath("2", "live", "optimized");
    addPath("3", "live", "inaccessible");
    const DiskPaths disk = paths();
    EXPECT_EQ(shown(disk), "nvme0c0n1 non-optimized standby no\n"
                           "nvme0c1n1 optimized active yes\n"
                           "nvme0c2n1 optimized active yes\n"
                           "nvme0c3n1 inaccessible standby no\n");
    EXPECT_EQ(disk.driver, PathDriver::nvme);
    EXPECT_EQ(disk.name, "/dev/nvme0n1");
    EXPECT_EQ(disk.paths[1].controller.value().name, "nvme1");
    EXPECT_FALSE(disk.hasLostPath());
}

TEST_F(NvmeDiskPaths, AreUsedWithoutOptimizationWhenNothingBetterWorks)
{
    addPath("0", "live", "non-optimized");
    addPath("1", "connecting", "optimized");
    addPath("2", "live", "change");
    const DiskPaths disk = paths();
    EXPECT_EQ(shown(disk), "nvme0c0n1 non-optimized active yes\n"
                           "nvme0c1n1 optimized failed no\n"
                           "nvme0c2n1 change standby no\n");
    EXPECT_TRUE(disk.hasLostPath());
}

TEST_F(NvmeDiskPaths, WithoutAnaAreAllUsed)
{
    addPath("0", "live", "");
    addPath("1", "live", "");
    EXPECT_EQ(shown(paths()), "nvme0c0n1 - active yes\nnvme0c1n1 - active yes\n");
}

TEST_F(NvmeDiskPaths, MayAllBeLost)
{
    addPath("0", "dead", "optimized");
    addPath("1", "live", "persistent-loss");
    const DiskPaths disk = paths();
    EXPECT_EQ(shown(disk), "nvme0c0n1 optimized failed no\n"
                           "nvme0c1n1 persistent-loss failed no\n");
    EXPECT_EQ(disk.hasUsedPath(), false);
}

TEST_F(NvmeDiskPaths, AreLostWithTheirControllerAlsoWhenTheirDeviceIsGone)
{
    addPath("0", "live", "optimized");
    addController("1", "connecting");
    EXPECT_EQ(shown(paths()), "nvme0c0n1 optimized active yes\nnvme1 - failed no\n");
}

TEST_F(NvmeDiskPaths, DoNotLeadThroughALiveControllerWithoutADevice)
{
    addPath("0", "live", "optimized");
    addController("1", "live");
    EXPECT_EQ(shown(paths()), "nvme0c0n1 optimized active yes\n");
}

TEST_F(NvmeDiskPaths, AreUnknownWhenTheControllersStateIs)
{
    addPath("0", "", "optimized");
    const DiskPaths disk = paths();
    EXPECT_EQ(shown(disk), "nvme0c0n1 optimized unknown ?\n");
    EXPECT_EQ(disk.hasUsedPath(), std::nullopt);
}

TEST_F(NvmeDiskPaths, OfADiskThatTheKernelDoesNotMultipathIsItself)
{
    const std::filesystem::path folder = m_machine.sysfs("class/nvme/nvme5");
    create_directories(folder);
    std::ofstream(folder / "state") << "live\n";
    m_machine.add("pci0000:00/nvme/nvme5", "nvme5n1", "259:5");
    const Inventory inventory(m_machine.roots());
    const DiskPaths disk = nvmeDiskPaths(inventory, *inventory.named("nvme5n1"));
    EXPECT_EQ(shown(disk), "/dev/nvme5n1 - active yes\n");
    EXPECT_EQ(disk.driver, PathDriver::none);
}

} // namespace

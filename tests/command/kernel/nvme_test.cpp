#include "kernel/nvme.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/made_up_machine.h"

using namespace command;
using testing::IsEmpty;

namespace {

/// A machine with NVMe controllers.
class Nvme : public testing::Test {
protected:
    void addController(const std::string& name, const std::string& subsystem)
    {
        const std::filesystem::path folder = m_machine.sysfs("class/nvme/" + name);
        create_directories(folder);
        std::ofstream(folder / "state") << "live\n";
        std::ofstream(folder / "transport") << "tcp\n";
        std::ofstream(folder / "address") << "traddr=192.0.2." + name.substr(4) + "\n";
        const std::filesystem::path links = m_machine.sysfs("class/nvme-subsystem/" + subsystem);
        create_directories(links);
        create_directory_symlink(folder, links / name);
    }

    /// A disk that controllers 3 and 10 reach.
    void addMultipathed()
    {
        addController("nvme10", "nvme-subsys0");
        addController("nvme3", "nvme-subsys0");
        std::ofstream(m_machine.sysfs("class/nvme-subsystem/nvme-subsys0/subsysnqn")) << "nqn.x\n";
        std::ofstream(m_machine.sysfs("class/nvme-subsystem/nvme-subsys0/iopolicy")) << "numa\n";
        m_machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        m_machine.add("virtual/nvme-fabrics/ctl/nvme3", "nvme0c3n1", "259:1");
        m_machine.set("nvme0c3n1", "ana_state", "optimized");
    }

    MadeUpMachine m_machine;
};

TEST_F(Nvme, ADiskHasAPathThroughEachControllerOfItsSubsystem)
{
    addMultipathed();
    m_machine.add("virtual/nvme-fabrics/ctl/nvme10", "nvme0c10n1", "259:2");
    m_machine.set("nvme0c10n1", "ana_state", "inaccessible");
    const Inventory inventory(m_machine.roots());
    const std::vector<NvmePath> paths = nvmePaths(inventory, *inventory.named("nvme0n1"));
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0].controller.name, "nvme3");
    EXPECT_EQ(paths[0].controller.state, "live");
    EXPECT_EQ(paths[0].controller.transport, "tcp");
    EXPECT_EQ(paths[0].controller.address, "traddr=192.0.2.3");
    EXPECT_EQ(paths[0].device, inventory.named("nvme0c3n1"));
    EXPECT_EQ(paths[0].anaState, "optimized");
    EXPECT_EQ(paths[1].controller.name, "nvme10");
    EXPECT_EQ(paths[1].device->kind(), DeviceKind::nvmePath);
    EXPECT_EQ(paths[1].anaState, "inaccessible");
}

TEST_F(Nvme, AControllerWithoutAPathIsStillThere)
{
    addMultipathed();
    const Inventory inventory(m_machine.roots());
    const std::vector<NvmePath> paths = nvmePaths(inventory, *inventory.named("nvme0n1"));
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[1].controller.name, "nvme10");
    EXPECT_EQ(paths[1].device, nullptr);
    EXPECT_EQ(paths[1].anaState, std::nullopt);
}

TEST_F(Nvme, ANameWithoutANamespaceHasNoPathsWithDevices)
{
    addMultipathed();
    m_machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0", "259:9");
    const Inventory inventory(m_machine.roots());
    const std::vector<NvmePath> paths = nvmePaths(inventory, *inventory.named("nvme0"));
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0].controller.name, "nvme3");
    EXPECT_EQ(paths[0].device, nullptr);
    EXPECT_EQ(paths[1].device, nullptr);
}

TEST_F(Nvme, ADiskWithoutMultipathingHasItsControllerForAPath)
{
    addController("nvme0", "nvme-subsys1");
    m_machine.add("pci0000:00/nvme/nvme0", "nvme0n1", "259:0");
    const Inventory inventory(m_machine.roots());
    const std::vector<NvmePath> paths = nvmePaths(inventory, *inventory.named("nvme0n1"));
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(paths[0].controller.name, "nvme0");
    EXPECT_EQ(paths[0].device, inventory.named("nvme0n1"));
    EXPECT_EQ(nvmeSubsystem(inventory, *inventory.named("nvme0n1")).value().name, "nvme-subsys1");
}

TEST_F(Nvme, AKernelWithoutSubsystemsHasThePathAllTheSame)
{
    m_machine.add("pci0000:00/nvme/nvme0", "nvme0n1", "259:0");
    const Inventory inventory(m_machine.roots());
    const std::vector<NvmePath> paths = nvmePaths(inventory, *inventory.named("nvme0n1"));
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(paths[0].controller.name, "nvme0");
    EXPECT_EQ(paths[0].controller.state, std::nullopt);
    EXPECT_FALSE(nvmeSubsystem(inventory, *inventory.named("nvme0n1")).has_value());
}

TEST_F(Nvme, ASubsystemHasItsNameAndPolicy)
{
    addMultipathed();
    const Inventory inventory(m_machine.roots());
    const NvmeSubsystem subsystem = nvmeSubsystem(inventory, *inventory.named("nvme0n1")).value();
    EXPECT_EQ(subsystem.name, "nvme-subsys0");
    EXPECT_EQ(subsystem.nqn, "nqn.x");
    EXPECT_EQ(subsystem.policy, "numa");
}

TEST_F(Nvme, WithoutTheKernelsFoldersNothingIsKnown)
{
    m_machine.add("virtual/block", "nvme0n1", "259:0");
    m_machine.add("virtual/nvme-subsystem/nvme-subsys0", "nvme1n1", "259:1");
    const Inventory inventory(m_machine.roots());
    EXPECT_THAT(nvmePaths(inventory, *inventory.named("nvme0n1")), IsEmpty());
    EXPECT_FALSE(nvmeSubsystem(inventory, *inventory.named("nvme0n1")).has_value());
    EXPECT_THAT(nvmePaths(inventory, *inventory.named("nvme1n1")), IsEmpty());
}

} // namespace

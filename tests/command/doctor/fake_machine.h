#ifndef TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H
#define TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "doctor/device_checks.h"
#include "kernel/block_devices.h"
#include "tests/support/temporary_folder.h"

/// Folders that look like those of a machine, at first without block devices. Nodes pass for block
/// devices in programs where fake_nodes.cpp replaces stat(2).
class FakeMachine {
public:
    FakeMachine()
    {
        std::filesystem::create_directories(m_paths.sysfsBlock);
        std::filesystem::create_directories(m_paths.dev / "mapper");
        std::ofstream(m_paths.drivers) << "Character devices:\n  1 mem\n\nBlock devices:\n";
    }

    const command::SystemPaths& paths() const { return m_paths; }

    void addDriver(const std::string& line)
    {
        std::ofstream(m_paths.drivers, std::ios::app) << line << '\n';
    }

    /// How the library reads the paths of its block devices.
    std::vector<command::DeviceReading> readings() const
    {
        CDmpClaimManager manager;
        const auto modules = command::makeModules({});
        std::vector<command::DeviceReading> all;
        for (const std::string& path : command::blockDevices(m_paths.sysfsBlock, m_paths.dev))
            all.push_back(command::deviceReading(command::explanation(manager, modules, path)));
        return all;
    }

    /// A device of the kernel without a node.
    void addDevice(const std::string& name)
    {
        std::filesystem::create_directories(m_paths.sysfsBlock / name);
    }

    void addNode(const std::string& name)
    {
        using std::filesystem::perms;
        addFile(name);
        permissions(m_paths.dev / name, perms::owner_read | perms::owner_write | perms::sticky_bit);
    }

    /// A file among the nodes that is none.
    void addFile(const std::string& name) { std::ofstream(m_paths.dev / name).put('\n'); }

    void addDeviceWithNode(const std::string& name)
    {
        addDevice(name);
        addNode(name);
    }

    /// A map of the device-mapper without a node.
    void addMap(const std::string& name, const std::string& uuid)
    {
        const std::filesystem::path folder =
            m_paths.sysfsBlock / ("dm-" + std::to_string(m_maps++)) / "dm";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "name") << name << '\n';
        std::ofstream(folder / "uuid") << uuid << '\n';
    }

    void addMapWithNode(const std::string& name, const std::string& uuid)
    {
        addMap(name, uuid);
        addNode("mapper/" + name);
    }

private:
    TemporaryFolder m_folder;
    command::SystemPaths m_paths{m_folder.file("block"), m_folder.file("dev"),
                                 m_folder.file("devices")};
    int m_maps = 0;
};

#endif

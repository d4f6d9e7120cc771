#ifndef FAKE_MACHINE_H
#define FAKE_MACHINE_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "doctor/device_checks.h"
#include "kernel/block_devices.h"
#include "tests/support/temporary_folder.h"

/// Folders that look like those of a machine with block devices; none at first. The nodes pass for
/// block devices where fake_nodes.cpp takes the place of `stat`.
class FakeMachine {
public:
    FakeMachine()
    {
        std::filesystem::create_directories(m_places.sysfsBlock);
        std::filesystem::create_directories(m_places.dev / "mapper");
        std::ofstream(m_places.drivers) << "Character devices:\n  1 mem\n\nBlock devices:\n";
    }

    const command::SystemPaths& places() const { return m_places; }

    void addDriver(const std::string& line)
    {
        std::ofstream(m_places.drivers, std::ios::app) << line << '\n';
    }

    /// How the library reads the paths of its block devices.
    std::vector<command::DeviceReading> readings() const
    {
        CDmpClaimManager manager;
        const auto modules = command::makeModules({});
        std::vector<command::DeviceReading> all;
        for (const std::string& path : command::blockDevices(m_places.sysfsBlock, m_places.dev))
            all.push_back(command::deviceReading(command::explanation(manager, modules, path)));
        return all;
    }

    /// A device of the kernel without a node.
    void addDevice(const std::string& name)
    {
        std::filesystem::create_directories(m_places.sysfsBlock / name);
    }

    void addNode(const std::string& name)
    {
        using std::filesystem::perms;
        addFile(name);
        permissions(m_places.dev / name,
                    perms::owner_read | perms::owner_write | perms::sticky_bit);
    }

    /// A file among the nodes that is none.
    void addFile(const std::string& name) { std::ofstream(m_places.dev / name).put('\n'); }

    void addDeviceWithNode(const std::string& name)
    {
        addDevice(name);
        addNode(name);
    }

    /// A map of the device-mapper without a node.
    void addMap(const std::string& name, const std::string& uuid)
    {
        const std::filesystem::path folder =
            m_places.sysfsBlock / ("dm-" + std::to_string(m_maps++)) / "dm";
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
    command::SystemPaths m_places{m_folder.file("block"), m_folder.file("dev"),
                                  m_folder.file("devices")};
    int m_maps = 0;
};

#endif

#ifndef TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H
#define TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "doctor/device_reading.h"
#include "kernel/block_devices.h"
#include "tests/support/made_up_machine.h"

/// A made-up machine with a list of drivers, whose devices may lack their nodes.
class FakeMachine : public MadeUpMachine {
public:
    FakeMachine() { std::ofstream(drivers()) << "Character devices:\n  1 mem\n\nBlock devices:\n"; }

    std::string drivers() const { return sysfs("drivers-of-the-kernel").string(); }

    void addDriver(const std::string& line) const
    {
        std::ofstream(drivers(), std::ios::app) << line << '\n';
    }

    /// How the library reads the paths of its block devices.
    std::vector<command::DeviceReading> readings() const
    {
        CDmpClaimManager manager;
        const auto modules = command::makeModules({});
        std::vector<command::DeviceReading> all;
        for (const std::string& path : command::blockDevices(roots().blockFolder(), roots().dev))
            all.push_back(command::deviceReading(command::explanation(manager, modules, path)));
        return all;
    }

    /// A device of the kernel without a node.
    void addDevice(const std::string& name)
    {
        addDeviceWithNode(name);
        std::filesystem::remove(dev(name));
    }

    void addDeviceWithNode(const std::string& name) { addVirtual(name, nextNumber()); }

    /// A node that the kernel does not know.
    void addLeftOverNode(const std::string& name) { addNode(name, nextNumber()); }

    /// A file among the nodes that is none.
    void addFile(const std::string& name) const
    {
        std::filesystem::remove(dev(name));
        std::ofstream(dev(name)).put('\n');
    }

    void addMapWithNode(const std::string& name, const std::string& uuid,
                        const std::vector<std::string>& members = {})
    {
        const std::string kernelName = "dm-" + std::to_string(m_maps++);
        MadeUpMachine::addMap(kernelName, nextNumber(), name, uuid, members);
    }

    /// A map of the device-mapper without a node in /dev/mapper.
    void addMap(const std::string& name, const std::string& uuid)
    {
        addMapWithNode(name, uuid);
        std::filesystem::remove(dev("mapper/" + name));
    }

private:
    std::string nextNumber() { return "252:" + std::to_string(m_devices++); }

    int m_maps = 0;
    int m_devices = 0;
};

#endif

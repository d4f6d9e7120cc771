#include "tests/command/doctor/fake_machine.h"

#include <fstream>

#include "kernel/block_devices.h"

FakeMachine::FakeMachine()
{
    std::ofstream(drivers()) << "Character devices:\n  1 mem\n\nBlock devices:\n";
}

std::string FakeMachine::drivers() const
{
    return sysfs("drivers-of-the-kernel").string();
}

void FakeMachine::addDriver(const std::string& line) const
{
    std::ofstream(drivers(), std::ios::app) << line << '\n';
}

std::vector<command::DeviceReading> FakeMachine::readings() const
{
    CDmpClaimManager manager;
    const auto modules = command::makeModules({});
    std::vector<command::DeviceReading> all;
    for (const std::string& path : command::blockDevices(roots().blockFolder(), roots().dev))
        all.push_back(command::deviceReading(command::explanation(manager, modules, path)));
    return all;
}

void FakeMachine::addDevice(const std::string& name)
{
    addDeviceWithNode(name);
    std::filesystem::remove(dev(name));
}

void FakeMachine::addDeviceWithNode(const std::string& name)
{
    addVirtual(name, nextNumber());
}

void FakeMachine::addLeftOverNode(const std::string& name)
{
    addNode(name, nextNumber());
}

void FakeMachine::addFile(const std::string& name) const
{
    std::filesystem::remove(dev(name));
    std::ofstream(dev(name)).put('\n');
}

void FakeMachine::addMapWithNode(const std::string& mapName, const std::string& uuid,
                                 const std::vector<std::string>& members)
{
    const std::string kernelName = "dm-" + std::to_string(m_maps++);
    MadeUpMachine::addMap(kernelName, nextNumber(), mapName, uuid, members);
}

void FakeMachine::addMap(const std::string& name, const std::string& uuid)
{
    addMapWithNode(name, uuid);
    std::filesystem::remove(dev("mapper/" + name));
}

std::string FakeMachine::nextNumber()
{
    return "252:" + std::to_string(m_devices++);
}

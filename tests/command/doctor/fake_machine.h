#ifndef TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H
#define TESTS_COMMAND_DOCTOR_FAKE_MACHINE_H

#include <string>
#include <vector>

#include "doctor/device_reading.h"
#include "tests/support/made_up_machine.h"

/// A made-up machine with a list of drivers, whose devices may lack their nodes.
class FakeMachine : public MadeUpMachine {
public:
    FakeMachine();

    std::string drivers() const;
    void addDriver(const std::string& line) const;

    /// How the library reads the paths of its block devices.
    std::vector<command::DeviceReading> readings() const;

    /// A device of the kernel without a node.
    void addDevice(const std::string& name);

    void addDeviceWithNode(const std::string& name);

    /// A node that the kernel does not know.
    void addLeftOverNode(const std::string& name);

    /// A file among the nodes that is none.
    void addFile(const std::string& name) const;

    void addMapWithNode(const std::string& mapName, const std::string& uuid,
                        const std::vector<std::string>& members = {});

    /// A map of the device-mapper without a node in /dev/mapper.
    void addMap(const std::string& name, const std::string& uuid);

private:
    std::string nextNumber();

    int m_maps = 0;
    int m_devices = 0;
};

#endif

#ifndef TESTS_SUPPORT_MADE_UP_MACHINE_H
#define TESTS_SUPPORT_MADE_UP_MACHINE_H

#include <filesystem>
#include <string>
#include <vector>

#include "kernel/kernel_roots.h"
#include "tests/support/temporary_folder.h"

/// Trees that look like a machine's /sys and /dev, at first without devices. Folders and links are
/// where the kernel has them. Nodes pass for block devices in programs that link fake_nodes.
class MadeUpMachine {
public:
    MadeUpMachine();

    command::KernelRoots roots() const;

    std::filesystem::path sysfs(const std::string& below) const;
    std::filesystem::path dev(const std::string& below) const;

    /// A device and its node. `place` is the folder of its folder below /sys/devices.
    void add(const std::string& place, const std::string& name, const std::string& number);

    /// A SCSI disk at "host:channel:target:lun".
    void addDisk(const std::string& name, const std::string& number, const std::string& hctl);

    void addVirtual(const std::string& name, const std::string& number);
    void addPartition(const std::string& disk, const std::string& name, const std::string& number);

    /// A map that consists of other devices, with its node in /dev/mapper.
    void addMap(const std::string& name, const std::string& number, const std::string& mapName,
                const std::string& uuid, const std::vector<std::string>& members = {});

    void addMember(const std::string& name, const std::string& member);

    /// Writes an attribute of a device, such as "size".
    void set(const std::string& name, const std::string& attribute, const std::string& value);

    void addNode(const std::string& name, const std::string& number);

private:
    void link(const std::string& from, const std::string& folder, const std::string& to);

    TemporaryFolder m_folder;
};

#endif

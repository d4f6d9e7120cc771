#ifndef TESTS_SUPPORT_MADE_UP_MACHINE_H
#define TESTS_SUPPORT_MADE_UP_MACHINE_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "kernel/kernel_roots.h"
#include "tests/support/temporary_folder.h"

/// Trees that look like a machine's /sys and /dev, at first without devices. Folders and links are
/// where the kernel has them. Nodes pass for block devices in programs where fake_nodes.cpp
/// replaces stat(2).
class MadeUpMachine {
public:
    MadeUpMachine()
    {
        for (const char* folder : {"class/block", "dev/block", "devices"})
            create_directories(sysfs(folder));
        create_directories(dev("mapper"));
    }

    command::KernelRoots roots() const { return {m_folder.file("sys"), m_folder.file("dev")}; }

    std::filesystem::path sysfs(const std::string& below) const
    {
        return m_folder.file("sys/" + below);
    }

    std::filesystem::path dev(const std::string& below) const
    {
        return m_folder.file("dev/" + below);
    }

    /// A device and its node. `place` is the folder of its folder below /sys/devices.
    void add(const std::string& place, const std::string& name, const std::string& number)
    {
        const std::filesystem::path folder = sysfs("devices/" + place + '/' + name);
        create_directories(folder);
        const std::string target = "../../devices/" + place + '/' + name;
        create_directory_symlink(target, sysfs("class/block/" + name));
        create_directory_symlink(target, sysfs("dev/block/" + number));
        set(name, "dev", number);
        addNode(name, number);
    }

    /// A SCSI disk at "host:channel:target:lun".
    void addDisk(const std::string& name, const std::string& number, const std::string& hctl)
    {
        const std::string scsi = "pci0000:00/host" + hctl.substr(0, hctl.find(':')) + "/target" +
                                 hctl.substr(0, hctl.rfind(':')) + '/' + hctl;
        add(scsi + "/block", name, number);
        create_directory_symlink("../../../" + hctl, sysfs("class/block/" + name + "/device"));
        set(name, "device/state", "running");
    }

    void addVirtual(const std::string& name, const std::string& number)
    {
        add("virtual/block", name, number);
    }

    void addPartition(const std::string& disk, const std::string& name, const std::string& number)
    {
        const std::string devices = sysfs("devices").lexically_normal().string() + '/';
        const std::string folder = canonical(sysfs("class/block/" + disk)).string();
        add(folder.substr(devices.size()), name, number);
    }

    /// A map that consists of other devices, with its node in /dev/mapper.
    void addMap(const std::string& name, const std::string& number, const std::string& mapName,
                const std::string& uuid, const std::vector<std::string>& members = {})
    {
        addVirtual(name, number);
        set(name, "dm/name", mapName);
        set(name, "dm/uuid", uuid);
        create_symlink("../" + name, dev("mapper/" + mapName));
        for (const std::string& member : members)
            addMember(name, member);
    }

    void addMember(const std::string& name, const std::string& member)
    {
        link(name, "slaves", member);
        link(member, "holders", name);
    }

    /// Writes an attribute of a device, such as "size".
    void set(const std::string& name, const std::string& attribute, const std::string& value)
    {
        const std::filesystem::path file = sysfs("class/block/" + name + '/' + attribute);
        create_directories(file.parent_path());
        std::ofstream(file) << value << '\n';
    }

    void addNode(const std::string& name, const std::string& number)
    {
        using std::filesystem::perms;
        std::ofstream(dev(name)) << number << '\n';
        permissions(dev(name), perms::owner_read | perms::owner_write | perms::sticky_bit);
    }

private:
    void link(const std::string& from, const std::string& folder, const std::string& to)
    {
        const std::filesystem::path links = sysfs("class/block/" + from + '/' + folder);
        create_directories(links);
        create_directory_symlink(sysfs("class/block/" + to), links / to);
    }

    TemporaryFolder m_folder;
};

#endif

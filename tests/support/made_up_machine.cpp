#include "tests/support/made_up_machine.h"

#include <fstream>

using std::filesystem::path;

MadeUpMachine::MadeUpMachine()
{
    for (const char* folder : {"class/block", "dev/block", "devices"})
        create_directories(sysfs(folder));
    create_directories(dev("mapper"));
}

command::KernelRoots MadeUpMachine::roots() const
{
    return {m_folder.file("sys"), m_folder.file("dev")};
}

path MadeUpMachine::sysfs(const std::string& below) const
{
    return m_folder.file("sys/" + below);
}

path MadeUpMachine::dev(const std::string& below) const
{
    return m_folder.file("dev/" + below);
}

void MadeUpMachine::add(const std::string& place, const std::string& name,
                        const std::string& number)
{
    const path folder = sysfs("devices/" + place + '/' + name);
    create_directories(folder);
    const std::string target = "../../devices/" + place + '/' + name;
    create_directory_symlink(target, sysfs("class/block/" + name));
    create_directory_symlink(target, sysfs("dev/block/" + number));
    set(name, "dev", number);
    addNode(name, number);
}

void MadeUpMachine::addDisk(const std::string& name, const std::string& number,
                            const std::string& hctl)
{
    const std::string scsi = "pci0000:00/host" + hctl.substr(0, hctl.find(':')) + "/target" +
                             hctl.substr(0, hctl.rfind(':')) + '/' + hctl;
    add(scsi + "/block", name, number);
    create_directory_symlink("../../../" + hctl, sysfs("class/block/" + name + "/device"));
    set(name, "device/state", "running");
}

void MadeUpMachine::addVirtual(const std::string& name, const std::string& number)
{
    add("virtual/block", name, number);
}

void MadeUpMachine::addPartition(const std::string& disk, const std::string& name,
                                 const std::string& number)
{
    const std::string devices = sysfs("devices").lexically_normal().string() + '/';
    const std::string folder = canonical(sysfs("class/block/" + disk)).string();
    add(folder.substr(devices.size()), name, number);
}

void MadeUpMachine::addMap(const std::string& name, const std::string& number,
                           const std::string& mapName, const std::string& uuid,
                           const std::vector<std::string>& members)
{
    addVirtual(name, number);
    set(name, "dm/name", mapName);
    set(name, "dm/uuid", uuid);
    create_symlink("../" + name, dev("mapper/" + mapName));
    for (const std::string& member : members)
        addMember(name, member);
}

void MadeUpMachine::addMember(const std::string& name, const std::string& member)
{
    link(name, "slaves", member);
    link(member, "holders", name);
}

void MadeUpMachine::set(const std::string& name, const std::string& attribute,
                        const std::string& value)
{
    const path file = sysfs("class/block/" + name + '/' + attribute);
    create_directories(file.parent_path());
    std::ofstream(file) << value << '\n';
}

void MadeUpMachine::addNode(const std::string& name, const std::string& number)
{
    using std::filesystem::perms;
    std::ofstream(dev(name)) << number << '\n';
    permissions(dev(name), perms::owner_read | perms::owner_write | perms::sticky_bit);
}

void MadeUpMachine::link(const std::string& from, const std::string& folder, const std::string& to)
{
    const path links = sysfs("class/block/" + from + '/' + folder);
    create_directories(links);
    create_directory_symlink(sysfs("class/block/" + to), links / to);
}

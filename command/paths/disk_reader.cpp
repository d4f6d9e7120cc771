#include "paths/disk_reader.h"

#include <algorithm>
#include <map>
#include <system_error>

#include "multipath/node_paths.h"
#include "text/word_list.h"

namespace command {

namespace {

using Outcome = DiskAnswer::Outcome;

/// Whether the volume manager answered that it does not hold the disk.
bool isUnheld(const DiskAnswer& answer)
{
    return answer.outcome == Outcome::refused || answer.outcome == Outcome::noNode ||
           answer.outcome == Outcome::misnamed;
}

class DiskReader {
public:
    DiskReader(const PathSources& sources, DiskList& list)
        : m_sources(sources), m_list(list), m_inventory(list.machine->inventory())
    {
        if (const std::error_code error = m_inventory.error())
            throw std::system_error(error, "cannot read " + sources.roots.blockFolder());
    }

    void readAll(bool withSinglePaths)
    {
        for (const BlockDevice& device : m_inventory.devices()) {
            if (diskOf(m_inventory, device) == &device)
                readDisk(device, withSinglePaths);
        }
    }

    void readGiven(const std::string& text)
    {
        const Machine& machine = *m_list.machine;
        const BlockDevice* device = machine.resolve(text);
        if (device == nullptr)
            device = m_inventory.at(text);
        if (device != nullptr)
            readDiskOf(text, *device);
        else if (!readNode(text))
            refuse("'" + text + "' is no block device of this machine");
    }

    /// Sums up why states are not known.
    void note()
    {
        std::map<std::error_code, std::size_t> errors;
        for (const DiskPaths& disk : m_list.disks) {
            if (disk.error)
                ++errors[disk.error];
        }
        for (const auto& [error, count] : errors)
            m_list.notes.push_back(noteOf(error, count));
    }

private:
    static std::string noteOf(const std::error_code& error, std::size_t count)
    {
        if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
            return "only root may ask the device-mapper which paths of a map are used, and which "
                   "have failed: run this as root to see GROUP, STATE and USED of " +
                   counted(count, "disk");
        return "the device-mapper does not tell GROUP, STATE and USED of " +
               counted(count, "disk") + ": " + error.message();
    }

    void readDiskOf(const std::string& text, const BlockDevice& device)
    {
        if (const BlockDevice* disk = diskOf(m_inventory, device)) {
            readDisk(*disk, true);
            return;
        }
        const std::string below = joined(pathsOf(m_inventory.membersOf(device)));
        refuse("'" + text + "' is no disk, and no partition or path of one" +
               (below.empty() ? "" : "; it consists of " + below));
    }

    void readDisk(const BlockDevice& disk, bool withSinglePath)
    {
        if (!m_read.insert(disk.path()).second)
            return;
        const bool isSingle = kernelDriverOf(disk) == PathDriver::none;
        if (isSingle && readNodeOf(disk))
            return;
        if (!isSingle || withSinglePath)
            m_list.disks.push_back(diskPaths(m_inventory, disk, m_sources.readMapStatus));
    }

    /// Returns false when the volume manager does not hold the disk.
    bool readNodeOf(const BlockDevice& disk)
    {
        if (disk.kind() != DeviceKind::disk || !m_sources.volumeManager.askAboutDisk ||
            m_hasGivenUp)
            return false;
        const DiskAnswer answer = m_sources.volumeManager.askAboutDisk(disk.path());
        if (answer.outcome == Outcome::answered)
            add(answer);
        else if (!isUnheld(answer))
            complainOf(answer);
        return answer.outcome == Outcome::answered;
    }

    /// Returns false when there is no node with this name.
    bool readNode(const std::string& name)
    {
        if (name.find('/') != std::string::npos || !m_sources.volumeManager.askAboutNode)
            return false;
        const DiskAnswer answer = m_sources.volumeManager.askAboutNode(name);
        if (answer.outcome != Outcome::answered)
            return false;
        add(answer);
        return true;
    }

    /// The node's other paths are not asked about.
    void add(const DiskAnswer& answer)
    {
        if (!m_nodes.insert(answer.node).second)
            return;
        m_list.disks.push_back(nodePaths(m_inventory, answer));
        for (const DiskPath& path : m_list.disks.back().paths)
            m_read.insert(path.name);
    }

    void complainOf(const DiskAnswer& answer)
    {
        m_hasGivenUp = answer.mustBeLast();
        m_list.notes.push_back("the volume manager's paths of " + answer.path +
                               " are not known: " + answer.command + ": " + answer.reason +
                               (m_hasGivenUp ? "; nothing more was asked" : ""));
    }

    void refuse(const std::string& reason)
    {
        m_list.hasUnknown = true;
        m_list.notes.push_back(reason);
    }

    const PathSources& m_sources;
    DiskList& m_list;
    const Inventory& m_inventory;
    std::set<std::string> m_read;  // paths of disks
    std::set<std::string> m_nodes; // of the volume manager
    bool m_hasGivenUp = false;
};

} // namespace

int DiskList::exitStatus() const
{
    const auto any = [&](auto isSo) { return std::any_of(disks.begin(), disks.end(), isSo); };
    if (hasUnknown || any([](const DiskPaths& disk) { return disk.hasUsedPath() == false; }))
        return 32;
    if (any([](const DiskPaths& disk) { return disk.hasLostPath(); }))
        return 64;
    return any([](const DiskPaths& disk) { return !disk.hasUsedPath(); }) ? 1 : 0;
}

DiskList readDisks(const PathSources& sources, const WantedDisks& wanted)
{
    DiskList list{std::make_unique<Machine>(sources.roots), {}, {}};
    DiskReader reader(sources, list);
    if (wanted.given.empty())
        reader.readAll(wanted.withSinglePaths);
    for (const std::string& text : wanted.given)
        reader.readGiven(text);
    reader.note();
    return list;
}

} // namespace command

#include "doctor/device_checks.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "doctor/map_difference.h"
#include "kernel/file_kind.h"
#include "kernel/kernel_maps.h"
#include "text/shell_word.h"
#include "text/text.h"

namespace fs = std::filesystem;

namespace command {

namespace {

using State = Finding::State;

constexpr char devFolder[] = "/dev/";
constexpr char mapperFolder[] = "/dev/mapper/";
constexpr char makeMapNode[] = "Have the node made: dmsetup mknodes";

/// Says whether the kernel's list of drivers names this driver.
///
///     line = [ blank+ ] major " " name          253 device-mapper
const char* presence(const fs::path& list, const std::string& name)
{
    std::ifstream file(list);
    if (!file)
        return "perhaps in the kernel, whose list of drivers cannot be read";
    for (std::string word; file >> word;) {
        if (word == name)
            return "in the kernel";
    }
    return "not in the kernel";
}

bool isNotBlockDevice(FileKind kind)
{
    return kind != FileKind::none && kind != FileKind::blockDevice;
}

std::string withoutPrefix(const std::string& path, std::string_view prefix)
{
    return path.substr(prefix.size());
}

bool isMapper(const DeviceReading& reading)
{
    return startsWith(reading.path, mapperFolder);
}

/// The name in sysfs, where '!' stands for '/'.
std::string sysfsName(const std::string& path)
{
    std::string name = withoutPrefix(path, devFolder);
    std::replace(name.begin(), name.end(), '/', '!');
    return name;
}

/// A device's name, its node, and whether the kernel has the device.
struct CheckedDevice {
    const DeviceReading& reading;
    Node node;
    bool isKnown;

    const char* noun() const { return isMapper(reading) ? "map" : "device"; }
};

std::string makeNodeRemedy(const CheckedDevice& device)
{
    const std::string& path = device.reading.path;
    if (isMapper(device.reading))
        return makeMapNode;
    return "Unless this is a container that is not to have it, make the node with the numbers in " +
           shellWord("/sys/class/block/" + sysfsName(path) + "/dev") + ": mknod " +
           shellWord(path) + " b MAJOR MINOR";
}

const char* removeNodeRemedy(const CheckedDevice& device)
{
    return isMapper(device.reading) ? "Have it removed: dmsetup mknodes"
                                    : "Check that its driver is loaded, else remove the node.";
}

class DeviceChecks {
public:
    DeviceChecks(const SystemPaths& system, const std::vector<DeviceReading>& readings,
                 const FindingReceiver& report)
        : m_system(system), m_readings(readings), m_report(report),
          m_maps(kernelMaps(system.sysfsBlock))
    {
        for (const DeviceReading& reading : m_readings)
            m_readingOf.emplace(reading.path, &reading);
        for (const KernelMap& map : m_maps)
            m_mapNames.insert(map.name);
    }

    void run(const std::vector<std::string>& given)
    {
        for (const Driver& driver : drivers())
            countDevices(driver);
        if (canSeeKernel())
            checkAll();
        for (const std::string& path : given)
            checkGiven(path);
    }

private:
    void checkAll()
    {
        for (const DeviceReading& reading : m_readings) {
            if (isMapper(reading) || !reading.claimers.empty())
                checkDevice({reading, nodeOf(reading.path), isKnown(reading)});
        }
        for (const KernelMap& map : m_maps)
            checkMap(map);
        reportAmbiguousNames();
    }

    /// Runs every check of a map, or of a device that a driver claims.
    void checkDevice(const CheckedDevice& device)
    {
        using Check = void (DeviceChecks::*)(const CheckedDevice&);
        constexpr Check checks[] = {&DeviceChecks::checkClaims, &DeviceChecks::checkNode};
        for (const Check check : checks)
            (this->*check)(device);
    }

    bool isKnown(const DeviceReading& reading) const
    {
        const std::string& path = reading.path;
        return isMapper(reading)
                   ? m_mapNames.count(withoutPrefix(path, mapperFolder)) > 0
                   : fileKind(m_system.sysfsBlock / sysfsName(path)) != FileKind::none;
    }

    /// Without the kernel's devices every node would look like a leftover, so no check runs.
    bool canSeeKernel()
    {
        std::error_code error;
        const fs::directory_iterator first(m_system.sysfsBlock, error);
        if (error)
            m_report({State::error, m_system.sysfsBlock,
                      "cannot be read (" + error.message() +
                          "): which devices there are is not known, and no name was examined",
                      "Run this as root; if it stays so, mount sysfs: mount -t sysfs sysfs /sys"});
        return !error;
    }

    void countDevices(const Driver& driver)
    {
        const auto claimed =
            std::count_if(m_readings.begin(), m_readings.end(),
                          [&](const DeviceReading& reading) { return reading.owner == &driver; });
        m_report({State::ok, driver.name,
                  std::string(presence(m_system.drivers, driver.kernelName)) + "; owns " +
                      std::to_string(claimed) + " of " + std::to_string(m_readings.size()) +
                      " block devices"});
    }

    void checkClaims(const CheckedDevice& device)
    {
        const std::vector<const Driver*>& claimers = device.reading.claimers;
        if (claimers.size() > 1)
            m_report({State::warning, device.reading.path,
                      std::string(claimers[0]->name) + " and " + claimers[1]->name +
                          " claim it, and " + device.reading.owner->name + " gets it",
                      "Use a path that holds the prefix of one driver only."});
    }

    void checkNode(const CheckedDevice& device)
    {
        const std::string& path = device.reading.path;
        const std::string known = std::string("a ") + device.noun() + " of the kernel, but ";
        const FileKind kind = device.node.kind();
        if (kind == FileKind::blockDevice && !device.isKnown)
            reportNode({State::warning, path,
                        std::string("a node, but the kernel has no such ") + device.noun(),
                        removeNodeRemedy(device)});
        else if (kind == FileKind::none && device.isKnown)
            reportNode({State::error, path, known + "the node is missing", makeNodeRemedy(device)});
        else if (isNotBlockDevice(kind) && device.isKnown)
            reportNode({State::error, path,
                        known + "what stands in the node's place is no block device",
                        "Move that away, for it may hold what was meant for the disk. " +
                            makeNodeRemedy(device)});
        else if (isNotBlockDevice(kind))
            reportNoDevice(path);
    }

    void checkGiven(const std::string& path)
    {
        if (m_reported.count(path) > 0)
            return;
        const FileKind kind = nodeOf(path).kind();
        if (kind == FileKind::none)
            reportNode({State::warning, path, "does not exist, or this user cannot see it",
                        "Check the name. If the disk was here before, this host has lost it: check "
                        "the cables and the array."});
        else if (isNotBlockDevice(kind))
            reportNoDevice(path);
    }

    void reportNoDevice(const std::string& path)
    {
        reportNode({State::error, path, "is no block device",
                    "Check the name. If this stands in the place of a disk that is lost, move it "
                    "away: what is written to it reaches no disk."});
    }

    Node nodeOf(const std::string& path) const
    {
        return nodeAt(startsWith(path, devFolder)
                          ? m_system.dev.string() + '/' + withoutPrefix(path, devFolder)
                          : path);
    }

    void reportNode(const Finding& finding)
    {
        m_reported.insert(finding.subject);
        m_report(finding);
    }

    void checkMap(const KernelMap& map)
    {
        const std::string path = mapperFolder + map.name;
        const auto reading = m_readingOf.find(path);
        if (reading != m_readingOf.end())
            compare(map, *reading->second);
        else if (map.isMultipathDisk() || map.isMultipathPartition())
            reportNode(
                {State::error, path, "a map of the kernel, but the node is missing", makeMapNode});
    }

    void compare(const KernelMap& map, const DeviceReading& reading)
    {
        if (const std::optional<Finding> difference = mapDifference(map, reading))
            m_report(*difference);
    }

    void reportAmbiguousNames()
    {
        const auto isAmbiguous = [](const DeviceReading& reading) { return reading.hasWarnings; };
        const auto count = std::count_if(m_readings.begin(), m_readings.end(), isAmbiguous);
        if (count == 0)
            return;
        const auto first = std::find_if(m_readings.begin(), m_readings.end(), isAmbiguous);
        m_report({State::note, first->path,
                  "other tools may read or name it differently, as " + std::to_string(count) +
                      " of " + std::to_string(m_readings.size()) + " block devices",
                  "'dmpclaim explain' tells more about each."});
    }

    const SystemPaths& m_system;
    const std::vector<DeviceReading>& m_readings;
    const FindingReceiver& m_report;
    const std::vector<KernelMap> m_maps;
    std::unordered_map<std::string_view, const DeviceReading*> m_readingOf; // by path
    std::unordered_set<std::string_view> m_mapNames;
    std::set<std::string> m_reported;
};

} // namespace

void checkDevices(const SystemPaths& system, const std::vector<DeviceReading>& readings,
                  const std::vector<std::string>& given, const FindingReceiver& report)
{
    DeviceChecks(system, readings, report).run(given);
}

} // namespace command

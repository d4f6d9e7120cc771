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
#include "doctor/node_remedies.h"
#include "kernel/file_kind.h"
#include "text/shell_word.h"
#include "text/text.h"

namespace command {

namespace {

constexpr char mapperFolder[] = "/dev/mapper/";

/// Says whether the kernel's list of drivers names this driver.
///
///     line = [ blank+ ] major " " name          253 device-mapper
const char* presence(const std::string& list, const std::string& name)
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

/// A device's name, its node, and whether the kernel has the device.
struct CheckedDevice {
    const DeviceReading& reading;
    Node node;
    bool isKnown;

    const char* noun() const { return isMapperPath(reading.path) ? "map" : "device"; }
};

class DeviceChecks {
public:
    DeviceChecks(const Inventory& kernel, const std::vector<DeviceReading>& readings,
                 const std::vector<std::string>& given, const FindingReceiver& report)
        : m_kernel(kernel), m_readings(readings), m_given(given),
          m_isGiven(given.begin(), given.end()), m_report(report)
    {
        for (const DeviceReading& reading : m_readings)
            m_readingOf.emplace(reading.path, &reading);
    }

    void run(const std::string& driverList)
    {
        for (const Driver& driver : drivers())
            countDevices(driver, driverList);
        if (canSeeKernel())
            checkAll();
        for (const std::string& path : m_given)
            checkGiven(path);
    }

private:
    void checkAll()
    {
        for (const DeviceReading& reading : m_readings) {
            const bool isChecked = isMapperPath(reading.path) || !reading.claimers.empty();
            if (isChecked && isAskedAbout(reading.path))
                checkDevice({reading, nodeOf(reading.path), isKnown(reading)});
        }
        for (const BlockDevice& device : m_kernel.devices()) {
            if (!device.mapName().empty() && isAskedAbout(device.path()))
                checkMap(device);
        }
        reportAmbiguousNames();
    }

    bool isAskedAbout(const std::string& path) const
    {
        return m_isGiven.empty() || m_isGiven.count(path) > 0;
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
        return kernelDevice(reading.path) != nullptr;
    }

    /// The kernel's device of that name; null when there is none.
    const BlockDevice* kernelDevice(const std::string& path) const
    {
        return isMapperPath(path) ? m_kernel.mapNamed(withoutPrefix(path, mapperFolder))
                                  : m_kernel.named(sysfsName(path));
    }

    /// Without the kernel's devices every node would look like a leftover, so no check runs.
    bool canSeeKernel()
    {
        const std::error_code error = m_kernel.error();
        if (error)
            m_report({Code::sysfsUnreadable, m_kernel.roots().blockFolder(),
                      "cannot be read (" + error.message() +
                          "): which devices there are is not known, and no name was examined",
                      "Run this as root; if it stays so, mount sysfs.",
                      "mount -t sysfs sysfs /sys"});
        return !error;
    }

    void countDevices(const Driver& driver, const std::string& driverList)
    {
        const auto claimed =
            std::count_if(m_readings.begin(), m_readings.end(),
                          [&](const DeviceReading& reading) { return reading.owner == &driver; });
        m_report({Code::driverDevices, driver.name,
                  std::string(presence(driverList, driver.kernelName)) + "; owns " +
                      std::to_string(claimed) + " of " + std::to_string(m_readings.size()) +
                      " block devices"});
    }

    void checkClaims(const CheckedDevice& device)
    {
        const std::vector<const Driver*>& claimers = device.reading.claimers;
        if (claimers.size() > 1)
            m_report({Code::twoClaims, device.reading.path,
                      std::string(claimers[0]->name) + " and " + claimers[1]->name +
                          " claim it, and " + device.reading.owner->name + " gets it",
                      "Use a path that holds the prefix of one driver only."});
    }

    void checkNode(const CheckedDevice& device)
    {
        const std::string& path = device.reading.path;
        const FileKind kind = device.node.kind();
        if (kind == FileKind::blockDevice && !device.isKnown)
            reportNode({Code::nodeLeftOver, path,
                        std::string("a node, but the kernel has no such ") + device.noun(),
                        isMapperPath(path) ? "Have it removed."
                                           : "Check that its driver is loaded, else remove it.",
                        removeNodeCommand(path)});
        else if (kind == FileKind::none && device.isKnown)
            reportMissingNode(path, device.noun());
        else if (isNotBlockDevice(kind) && device.isKnown)
            reportReplacedNode(path, device.noun());
        else if (isNotBlockDevice(kind))
            reportNoDevice(path);
    }

    void reportMissingNode(const std::string& path, const std::string& noun)
    {
        reportNode({Code::nodeMissing, path,
                    "a " + noun + " of the kernel, but the node is missing",
                    isMapperPath(path)
                        ? "Have the node made."
                        : "Make the node, unless this is a container that is not to have it.",
                    makeNodeCommand(path, *kernelDevice(path))});
    }

    void reportReplacedNode(const std::string& path, const std::string& noun)
    {
        const std::string make = makeNodeCommand(path, *kernelDevice(path));
        reportNode(
            {Code::nodeReplaced, path,
             "a " + noun + " of the kernel, but what stands in the node's place is no block device",
             "Move that away, for it may hold what was meant for the disk, and make the "
             "node.",
             moveAwayCommand(path) + (make.empty() ? "" : " && " + make)});
    }

    void checkGiven(const std::string& path)
    {
        if (m_reported.count(path) > 0)
            return;
        const FileKind kind = nodeOf(path).kind();
        if (kind == FileKind::none)
            reportNode({Code::deviceMissing, path, "does not exist, or this user cannot see it",
                        "Check the name. If the disk was here before, this host has lost it: check "
                        "the cables and the array."});
        else if (isNotBlockDevice(kind))
            reportNoDevice(path);
    }

    void reportNoDevice(const std::string& path)
    {
        reportNode({Code::noBlockDevice, path, "is no block device",
                    "Check the name. If this stands in the place of a disk that is lost, move it "
                    "away: what is written to it reaches no disk."});
    }

    Node nodeOf(const std::string& path) const { return m_kernel.nodeAt(path); }

    void reportNode(const Finding& finding)
    {
        m_reported.insert(finding.device);
        m_report(finding);
    }

    void checkMap(const BlockDevice& map)
    {
        const std::string path = map.path();
        const auto reading = m_readingOf.find(path);
        if (reading != m_readingOf.end())
            compare(map, *reading->second);
        else if (map.kind() == DeviceKind::multipath ||
                 map.kind() == DeviceKind::multipathPartition)
            reportMissingNode(path, "map");
    }

    void compare(const BlockDevice& map, const DeviceReading& reading)
    {
        const std::optional<Finding> difference =
            mapDifference(map, reading, m_kernel.parentOf(map));
        if (difference)
            m_report(*difference);
    }

    void reportAmbiguousNames()
    {
        const DeviceReading* first = nullptr;
        std::size_t count = 0;
        for (const DeviceReading& reading : m_readings) {
            if (!reading.hasWarnings || !isAskedAbout(reading.path))
                continue;
            first = first == nullptr ? &reading : first;
            ++count;
        }
        if (first != nullptr)
            m_report({Code::ambiguousNames, first->path,
                      "other tools may read or name it differently, as " + std::to_string(count) +
                          " of " + std::to_string(m_readings.size()) + " block devices",
                      "Read more about each.", "dmpclaim explain " + shellWord(first->path)});
    }

    const Inventory& m_kernel;
    const std::vector<DeviceReading>& m_readings;
    const std::vector<std::string>& m_given;
    const std::unordered_set<std::string> m_isGiven;
    const FindingReceiver& m_report;
    std::unordered_map<std::string_view, const DeviceReading*> m_readingOf; // by path
    std::set<std::string> m_reported;
};

} // namespace

void checkDevices(const Inventory& kernel, const std::string& driverList,
                  const std::vector<DeviceReading>& readings, const std::vector<std::string>& given,
                  const FindingReceiver& report)
{
    DeviceChecks(kernel, readings, given, report).run(driverList);
}

} // namespace command

#include "doctor/device_examination.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "doctor/file_kind.h"
#include "doctor/kernel_maps.h"
#include "doctor/map_difference.h"
#include "shell_word.h"
#include "text.h"

namespace fs = std::filesystem;

namespace {

using command::DeviceReading;
using command::FileKind;
using command::fileKind;
using command::Finding;
using command::KernelMap;
using State = Finding::State;

constexpr char devFolder[] = "/dev/";
constexpr char mapperFolder[] = "/dev/mapper/";
constexpr char makeMapNode[] = "Have the node made: dmsetup mknodes";

/// A driver of the library, and its name in the kernel's list.
struct Driver {
    const char* name;
    const char* kernelName;
};

constexpr Driver drivers[] = {
    {"native", "sd"}, {"powerpath", "emcpower"}, {"device-mapper", "device-mapper"}};

/// Whether the list of drivers names this one, in words.
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

/// Whether a device's node cannot be there for this.
bool isInTheWay(FileKind kind)
{
    return kind != FileKind::none && kind != FileKind::blockDevice;
}

std::string behind(const std::string& path, const std::string& folder)
{
    return path.substr(folder.size());
}

bool isMapper(const std::string& path)
{
    return command::startsWith(path, mapperFolder);
}

/// What is known of a device besides its node.
struct Device {
    const char* noun; // what it is to the kernel
    bool isKnown;     // to the kernel
    std::string making;
    const char* removing;
};

class DeviceExamination {
public:
    DeviceExamination(const command::Places& places, const std::vector<DeviceReading>& readings,
                      const command::FindingReceiver& report)
        : m_places(places), m_readings(readings), m_report(report),
          m_maps(command::kernelMaps(places.sysfsBlock))
    {
        for (const DeviceReading& reading : m_readings)
            m_readingOf.emplace(reading.path, &reading);
        for (const KernelMap& map : m_maps)
            m_mapNames.insert(map.name);
    }

    void run(const std::vector<std::string>& given)
    {
        for (const Driver& driver : drivers)
            count(driver);
        if (canSeeKernel())
            examineAll();
        for (const std::string& path : given)
            examineGiven(path);
    }

private:
    void examineAll()
    {
        for (const DeviceReading& reading : m_readings)
            examineReading(reading);
        for (const KernelMap& map : m_maps)
            examineMap(map);
        tellOfWarnings();
    }

    /// Without the kernel's devices every node would look left over.
    bool canSeeKernel()
    {
        std::error_code error;
        const fs::directory_iterator first(m_places.sysfsBlock, error);
        if (error)
            m_report({State::error, m_places.sysfsBlock,
                      "cannot be read (" + error.message() +
                          "): which devices there are is not known, and no name was examined",
                      "Run this as root; if it stays so, mount sysfs: mount -t sysfs sysfs /sys"});
        return !error;
    }

    void count(const Driver& driver)
    {
        const auto claimed =
            std::count_if(m_readings.begin(), m_readings.end(), [&](const DeviceReading& reading) {
                return reading.owner == driver.name;
            });
        m_report({State::ok, driver.name,
                  std::string(presence(m_places.drivers, driver.kernelName)) + "; owns " +
                      std::to_string(claimed) + " of " + std::to_string(m_readings.size()) +
                      " block devices",
                  ""});
    }

    void examineReading(const DeviceReading& reading)
    {
        const std::vector<std::string>& claimers = reading.claimers;
        if (claimers.size() > 1)
            m_report({State::warning, reading.path,
                      claimers[0] + " and " + claimers[1] + " claim it, and " + reading.owner +
                          " gets it",
                      "Use a path that holds the prefix of one driver only."});
        if (isMapper(reading.path))
            examineMapperNode(reading.path);
        else if (!claimers.empty())
            examineDeviceNode(reading.path);
    }

    void examineMapperNode(const std::string& path)
    {
        const bool isKnown = m_mapNames.count(behind(path, mapperFolder)) > 0;
        examineNode(path, {"map", isKnown, makeMapNode, "Have it removed: dmsetup mknodes"});
    }

    /// Of a native or PowerPath device.
    void examineDeviceNode(const std::string& path)
    {
        std::string name = behind(path, devFolder);
        std::replace(name.begin(), name.end(), '/', '!');
        const bool isKnown = fileKind(m_places.sysfsBlock / name) != FileKind::none;
        examineNode(path, {"device", isKnown,
                           "Unless this is a container that is not to have it, make the node with "
                           "the numbers in " +
                               command::shellWord("/sys/class/block/" + name + "/dev") +
                               ": mknod " + command::shellWord(path) + " b MAJOR MINOR",
                           "Check that its driver is loaded, else remove the node."});
    }

    void examineNode(const std::string& path, const Device& device)
    {
        const std::string known = std::string("a ") + device.noun + " of the kernel, but ";
        const FileKind kind = kindOfNode(path);
        if (kind == FileKind::blockDevice && !device.isKnown)
            reportNode({State::warning, path,
                        std::string("a node, but the kernel has no such ") + device.noun,
                        device.removing});
        else if (kind == FileKind::none && device.isKnown)
            reportNode({State::error, path, known + "the node is missing", device.making});
        else if (isInTheWay(kind) && device.isKnown)
            reportNode(
                {State::error, path, known + "what stands in the node's place is no block device",
                 "Move that away, for it may hold what was meant for the disk. " + device.making});
        else if (isInTheWay(kind))
            tellOfNoDevice(path);
    }

    void examineGiven(const std::string& path)
    {
        if (m_reported.count(path) > 0)
            return;
        const FileKind kind = kindOfNode(path);
        if (kind == FileKind::none)
            reportNode({State::warning, path, "does not exist, or this user cannot see it",
                        "Check the name. If the disk was here before, this host has lost it: check "
                        "the cables and the array."});
        else if (isInTheWay(kind))
            tellOfNoDevice(path);
    }

    void tellOfNoDevice(const std::string& path)
    {
        reportNode({State::error, path, "is no block device",
                    "Check the name. If this stands in the place of a disk that is lost, move it "
                    "away: what is written to it reaches no disk."});
    }

    FileKind kindOfNode(const std::string& path) const
    {
        return fileKind(command::startsWith(path, devFolder)
                            ? m_places.dev.string() + '/' + behind(path, devFolder)
                            : path);
    }

    void reportNode(const Finding& finding)
    {
        m_reported.insert(finding.subject);
        m_report(finding);
    }

    void examineMap(const KernelMap& map)
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
        if (const std::optional<Finding> difference = command::mapDifference(map, reading))
            m_report(*difference);
    }

    void tellOfWarnings()
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

    const command::Places& m_places;
    const std::vector<DeviceReading>& m_readings;
    const command::FindingReceiver& m_report;
    const std::vector<KernelMap> m_maps;
    std::unordered_map<std::string_view, const DeviceReading*> m_readingOf; // by path
    std::unordered_set<std::string_view> m_mapNames;
    std::set<std::string> m_reported;
};

} // namespace

namespace command {

void examineDevices(const Places& places, const std::vector<DeviceReading>& readings,
                    const std::vector<std::string>& given, const FindingReceiver& report)
{
    DeviceExamination(places, readings, report).run(given);
}

} // namespace command

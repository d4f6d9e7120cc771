#include "doctor/device_examination.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <system_error>

#include "doctor/file_kind.h"
#include "doctor/kernel_maps.h"
#include "row_writer.h"
#include "shell_word.h"
#include "text.h"

namespace fs = std::filesystem;

namespace {

using command::FileKind;
using command::fileKind;
using command::KernelMap;
using command::Row;
using State = command::Finding::State;

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

/// The names of the modules that claim a path.
std::vector<std::string> claimers(const Row& row)
{
    std::vector<std::string> names;
    for (const Row& module : row["modules"]) {
        if (module["claim"] != 0)
            names.push_back(module["module"]);
    }
    return names;
}

/// What a map is to the kernel, or the library's reading of its node.
enum Kind { disk, partition, other };

Kind kindOf(const KernelMap& map)
{
    if (map.isMultipathDisk())
        return disk;
    return map.isMultipathPartition() ? partition : other;
}

Kind readingOf(const Row& row)
{
    if (row["owner"].is_null())
        return other;
    return row["partition"] ? partition : disk;
}

struct Difference {
    State state = State::ok;
    const char* text = nullptr; // null when kernel and library agree
    const char* advice = nullptr;
};

constexpr Difference falseClaim{
    State::note, "the library takes it for a multipath device, which it is not to the kernel",
    "Do not hand it to hosts that expect disks. A name with a '-' would be left unclaimed."};

// By what it is to the kernel, and by what it is to the library.
constexpr Difference differences[3][3] = {
    {{},
     {State::warning, "a multipath disk, but the library takes it for a partition",
      "Give it an alias that does not end in 'p' and a digit."},
     {State::warning, "a multipath disk, but no driver claims its name",
      "Give it an alias without '-' in multipath.conf."}},
    {{State::warning, "a partition of a multipath disk, but the library takes it for a disk",
      "Ask about the disk. Partitions are known by a 'p' and one digit: kpartx -a -p p"},
     {},
     {State::note, "a partition of a multipath disk, but no driver claims its name",
      "Ask about the disk. Partitions are known by a 'p' and one digit: kpartx -a -p p"}},
    {falseClaim, falseClaim, {}}};

/// What is known of a device besides its node.
struct Device {
    const char* noun; // what it is to the kernel
    bool isKnown;     // to the kernel
    std::string making;
    const char* removing;
};

class DeviceExamination {
public:
    DeviceExamination(const command::Places& places, const Row& names,
                      const command::FindingReceiver& report)
        : m_places(places), m_names(names), m_report(report),
          m_maps(command::kernelMaps(places.sysfsBlock))
    {}

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
        for (const Row& row : m_names)
            examineName(row);
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
        const auto claimed = std::count_if(m_names.begin(), m_names.end(), [&](const Row& row) {
            return row["owner"] == driver.name;
        });
        m_report({State::ok, driver.name,
                  std::string(presence(m_places.drivers, driver.kernelName)) + "; owns " +
                      std::to_string(claimed) + " of " + std::to_string(m_names.size()) +
                      " block devices",
                  ""});
    }

    void examineName(const Row& row)
    {
        const std::string path = row["name"];
        const std::vector<std::string> names = claimers(row);
        if (names.size() > 1)
            m_report({State::warning, path,
                      names[0] + " and " + names[1] + " claim it, and " +
                          command::cellText(row["owner"]) + " gets it",
                      "Use a path that holds the prefix of one driver only."});
        if (isMapper(path))
            examineMapperNode(path);
        else if (!names.empty())
            examineDeviceNode(path);
    }

    void examineMapperNode(const std::string& path)
    {
        const std::string name = behind(path, mapperFolder);
        const bool isKnown = std::any_of(m_maps.begin(), m_maps.end(),
                                         [&](const KernelMap& map) { return map.name == name; });
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

    void reportNode(const command::Finding& finding)
    {
        m_reported.insert(finding.subject);
        m_report(finding);
    }

    void examineMap(const KernelMap& map)
    {
        const std::string path = mapperFolder + map.name;
        const auto row = std::find_if(m_names.begin(), m_names.end(),
                                      [&](const Row& name) { return name["name"] == path; });
        if (row != m_names.end())
            compare(map, *row);
        else if (kindOf(map) != other)
            reportNode(
                {State::error, path, "a map of the kernel, but the node is missing", makeMapNode});
    }

    void compare(const KernelMap& map, const Row& row)
    {
        const Difference& difference = differences[kindOf(map)][readingOf(row)];
        if (difference.text != nullptr)
            m_report({difference.state, row["name"], difference.text, difference.advice});
    }

    void tellOfWarnings()
    {
        const auto isAmbiguous = [](const Row& row) { return !row["warnings"].empty(); };
        const auto count = std::count_if(m_names.begin(), m_names.end(), isAmbiguous);
        if (count == 0)
            return;
        const auto first = std::find_if(m_names.begin(), m_names.end(), isAmbiguous);
        m_report({State::note, (*first)["name"],
                  "other tools may read or name it differently, as " + std::to_string(count) +
                      " of " + std::to_string(m_names.size()) + " block devices",
                  "'dmpclaim explain' tells more about each."});
    }

    const command::Places& m_places;
    const Row& m_names;
    const command::FindingReceiver& m_report;
    std::vector<KernelMap> m_maps;
    std::set<std::string> m_reported;
};

} // namespace

namespace command {

void examineDevices(const Places& places, const Row& names, const std::vector<std::string>& given,
                    const FindingReceiver& report)
{
    DeviceExamination(places, names, report).run(given);
}

} // namespace command

#include "kernel/block_device.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "files/names_in.h"
#include "kernel/sysfs_file.h"
#include "kernel/udev_links.h"
#include "text/text.h"

namespace command {

namespace {

constexpr std::uint64_t sectorBytes = 512; // in sysfs, whatever the device's own sectors are

/// Takes the last component off a path.
std::string_view takeLast(std::string_view& path)
{
    const std::string_view last = path.substr(path.rfind('/') + 1); // all of it without a slash
    path.remove_suffix(std::min(last.size() + 1, path.size()));
    return last;
}

/// The address of a SCSI device:  host ":" channel ":" target ":" lun          2:0:0:1
bool isHctl(std::string_view text)
{
    return std::count(text.begin(), text.end(), ':') == 3 &&
           text.find_first_not_of("0123456789:") == std::string_view::npos;
}

/// The kinds of SCSI identifiers: how the kernel's text begins, and multipath's.
constexpr std::pair<std::string_view, char> identifierKinds[] = {
    {"naa.", '3'}, {"eui.", '2'}, {"t10.", '1'}};

/// A SCSI identifier as multipath has it. Others stay as they are.
///
///     naa.60014050 = 360014050        t10.ATA     DISK = 1ATA_DISK
std::string multipathWwid(const std::string& wwid)
{
    for (const auto& [beginning, digit] : identifierKinds) {
        if (!startsWith(wwid, beginning))
            continue;
        std::string text = digit + wwid.substr(beginning.size());
        text.erase(std::unique(text.begin(), text.end(),
                               [](char a, char b) { return a == ' ' && b == ' '; }),
                   text.end());
        std::replace(text.begin(), text.end(), ' ', '_');
        return text;
    }
    return wwid;
}

} // namespace

BlockDevice::BlockDevice(const KernelRoots& roots, std::string kernelName)
    : m_roots(&roots), m_kernelName(std::move(kernelName)), m_kind(kindOfKernelName(m_kernelName))
{
    readPlace();
    if (m_kind == DeviceKind::map)
        readMap();
}

/// Reads where the link in class/block leads, which tells much for one system call:
///
///     ../../devices/pci0000:00/.../target2:0:0/2:0:0:1/block/sda/sda1
///     ../../devices/virtual/block/dm-0
///     ../../devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1
void BlockDevice::readPlace()
{
    const std::optional<std::string> target = linkTarget(file(""));
    if (!target)
        return;
    m_isVirtual = target->find("/devices/virtual/") != std::string::npos;
    std::string_view place = *target;
    takeLast(place);
    m_container = takeLast(place);
    m_partnum = partitionNumber(m_container, m_kernelName);
    if (m_partnum)
        m_kind = DeviceKind::partition;
    else if (const std::string_view device = takeLast(place); isHctl(device))
        m_hctl = device;
}

void BlockDevice::readMap()
{
    m_mapName = attribute("dm/name").value_or("");
    MapUuid uuid = parseMapUuid(attribute("dm/uuid").value_or(""));
    m_kind = uuid.kind;
    m_partnum = uuid.partnum;
    if (m_kind == DeviceKind::multipath)
        m_mapWwid = std::move(uuid.id);
}

std::string BlockDevice::path() const
{
    if (!m_mapName.empty())
        return "/dev/mapper/" + m_mapName;
    std::string name = m_kernelName;
    std::replace(name.begin(), name.end(), '!', '/');
    return "/dev/" + name;
}

std::optional<DeviceNumber> BlockDevice::number() const
{
    const std::optional<std::string> text = attribute("dev");
    return text ? parseDeviceNumber(*text) : std::nullopt;
}

std::optional<std::uint64_t> BlockDevice::size() const
{
    const std::optional<std::uint64_t> sectors = readNumber(file("/size"));
    return sectors ? std::optional(*sectors * sectorBytes) : std::nullopt;
}

std::optional<bool> BlockDevice::isReadOnly() const
{
    return flag("ro");
}

std::optional<std::string> BlockDevice::wwid() const
{
    if (!m_mapWwid.empty())
        return m_mapWwid;
    if (std::optional<std::string> own = attribute("wwid")) // of NVMe
        return own;
    const std::optional<std::string> scsi = attribute("device/wwid");
    return scsi ? std::optional(multipathWwid(*scsi)) : std::nullopt;
}

std::optional<std::string> BlockDevice::state() const
{
    if (m_mapName.empty())
        return attribute("device/state");
    const std::optional<bool> isSuspended = flag("dm/suspended");
    return isSuspended ? std::optional<std::string>(*isSuspended ? "suspended" : "running")
                       : std::nullopt;
}

std::optional<std::string> BlockDevice::accessState() const
{
    return attribute("device/access_state");
}

std::optional<bool> BlockDevice::isPreferredPath() const
{
    return flag("device/preferred_path");
}

/// The first eleven numbers of the attribute "stat"; newer kernels add others:
///
///     reads merged sectors ms writes merged sectors ms in-flight busy-ms weighted-ms
std::optional<IoCounters> BlockDevice::ioCounters() const
{
    std::istringstream text(attribute("stat").value_or(""));
    std::uint64_t numbers[10] = {};
    for (std::uint64_t& number : numbers)
        text >> number;
    if (!text)
        return std::nullopt;
    return IoCounters{numbers[0], numbers[2] * sectorBytes,
                      numbers[4], numbers[6] * sectorBytes,
                      numbers[8], numbers[9]};
}

bool BlockDevice::isInUse() const
{
    switch (m_kind) {
    case DeviceKind::loop:
    case DeviceKind::zram:
        return size().value_or(0) > 0;
    case DeviceKind::ram: {
        const std::optional<IoCounters> counters = ioCounters();
        return (counters && counters->writes > 0) || !holders().empty();
    }
    default:
        return true;
    }
}

std::vector<std::string> BlockDevice::slaves() const
{
    return namesIn(file("/slaves"));
}

std::vector<std::string> BlockDevice::holders() const
{
    return namesIn(file("/holders"));
}

std::vector<std::string> BlockDevice::links() const
{
    return udevLinks(file(""));
}

std::optional<std::string> BlockDevice::attribute(const std::string& name) const
{
    return readAttribute(file('/' + name));
}

std::optional<bool> BlockDevice::flag(const std::string& name) const
{
    const std::optional<std::uint64_t> number = readNumber(file('/' + name));
    return number ? std::optional(*number != 0) : std::nullopt;
}

std::string BlockDevice::file(const std::string& name) const
{
    return m_roots->blockFolder() + '/' + m_kernelName + name;
}

} // namespace command

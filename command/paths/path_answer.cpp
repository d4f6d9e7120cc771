#include "paths/path_answer.h"

#include <ctime>

namespace command {

namespace {

using Answer = const PathAnswer&;

Field number(const std::optional<std::uint64_t>& value)
{
    return value ? Field(static_cast<std::int64_t>(*value)) : Field();
}

/// A field of the path's device; none without a device.
template <class FieldOf>
Field ofDevice(Answer answer, FieldOf fieldOf)
{
    return answer.path.device == nullptr ? Field() : Field(fieldOf(*answer.path.device));
}

template <class FieldOf>
Field ofController(Answer answer, FieldOf fieldOf)
{
    return answer.path.controller ? Field(fieldOf(*answer.path.controller)) : Field();
}

template <std::uint64_t IoCounters::*counter>
Field counted(Answer answer)
{
    return answer.io ? number((*answer.io).*counter) : Field();
}

template <std::int64_t IoRates::*rate>
Field rated(Answer answer)
{
    return answer.rates ? Field((*answer.rates).*rate) : Field();
}

Field driver(Answer answer)
{
    const char* name = driverName(answer.disk.driver);
    return name == nullptr ? Field() : Field(std::string(name));
}

Tone toneOf(PathState state)
{
    switch (state) {
    case PathState::active:
        return Tone::good;
    case PathState::failed:
    case PathState::offline:
        return Tone::bad;
    case PathState::unknown:
        return Tone::note;
    default:
        return Tone::plain;
    }
}

Field state(Answer answer)
{
    return Mark{pathStateName(answer.path.state), toneOf(answer.path.state)};
}

Field used(Answer answer)
{
    const std::optional<bool> isUsed = answer.path.isUsed;
    return isUsed ? Field(Flag{*isUsed, *isUsed ? Tone::good : Tone::plain}) : Field();
}

Field address(Answer answer)
{
    if (answer.path.controller)
        return optionalField(answer.path.controller->address);
    return ofDevice(answer, [](const BlockDevice& device) { return nonEmptyField(device.hctl()); });
}

Field access(Answer answer)
{
    if (answer.path.controller)
        return nonEmptyField(answer.path.group);
    return ofDevice(answer,
                    [](const BlockDevice& device) { return optionalField(device.accessState()); });
}

Field preferred(Answer answer)
{
    return ofDevice(
        answer, [](const BlockDevice& device) { return optionalField(device.isPreferredPath()); });
}

Field kernelName(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) { return device.kernelName(); });
}

Field deviceNumber(Answer answer)
{
    return ofDevice(answer, [](const BlockDevice& device) {
        const std::optional<DeviceNumber> found = device.number();
        return found ? Field(found->text()) : Field();
    });
}

Field controller(Answer answer)
{
    return ofController(answer, [](const NvmeController& found) { return found.name; });
}

Field controllerState(Answer answer)
{
    return ofController(answer,
                        [](const NvmeController& found) { return optionalField(found.state); });
}

Field transport(Answer answer)
{
    return ofController(answer,
                        [](const NvmeController& found) { return optionalField(found.transport); });
}

Field subsystem(Answer answer)
{
    const bool isNvme = answer.disk.driver == PathDriver::nvme;
    return isNvme ? nonEmptyField(answer.disk.device->container()) : Field();
}

Field changeKind(Answer answer)
{
    if (answer.change == nullptr)
        return {};
    switch (answer.change->kind) {
    case PathChange::Kind::added:
        return Mark{"added", Tone::warning};
    case PathChange::Kind::removed:
        return Mark{"removed", Tone::warning};
    default:
        return Mark{"changed", Tone::warning};
    }
}

Field changeTime(Answer answer)
{
    if (answer.change == nullptr)
        return {};
    const std::time_t time = std::chrono::system_clock::to_time_t(answer.change->time);
    std::tm parts{};
    gmtime_r(&time, &parts);
    char text[32];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return std::string(text, size);
}

Field was(Answer answer)
{
    return answer.change == nullptr ? Field() : nonEmptyField(answer.change->was);
}

Columns<PathAnswer> diskColumns()
{
    return {
        {{"DEVICE", Kind::text, "the disk: its map or device, or the volume manager's node"},
         [](Answer answer) -> Field { return answer.disk.name; }},
        {{"DRIVER", Kind::text, "what multipaths it: device-mapper, nvme, kodmp"}, driver},
        {{"PATH", Kind::text, "a path of the disk; one of NVMe has a name, but no node"},
         [](Answer answer) -> Field { return answer.path.name; }},
        {{"GROUP", Kind::text, "the map's group, by number; NVMe's ANA state; KoDMP's type"},
         [](Answer answer) { return nonEmptyField(answer.path.group); }},
        {{"STATE", Kind::text, "active, standby, failed, offline or unknown"}, state},
        {{"USED", Kind::text, "whether requests go through the path, alone or by turns"}, used},
        {{"ADDRESS", Kind::text, "host:channel:target:lun, or the NVMe controller's address"},
         address},
        {{"SIZE", Kind::number, "the disk's size in bytes"},
         [](Answer answer) { return number(answer.facts.size); }},
        {{"WWID", Kind::text, "the disk's world-wide identifier"},
         [](Answer answer) { return optionalField(answer.facts.wwid); }},
    };
}

Columns<PathAnswer> counterColumns()
{
    return {
        {{"READS", Kind::number, "reads through the path since it came up"},
         counted<&IoCounters::reads>},
        {{"WRITES", Kind::number, "writes through the path since it came up"},
         counted<&IoCounters::writes>},
        {{"RBYTES", Kind::number, "bytes read through the path"}, counted<&IoCounters::readBytes>},
        {{"WBYTES", Kind::number, "bytes written through the path"},
         counted<&IoCounters::writtenBytes>},
        {{"INFLIGHT", Kind::number, "requests that the path has not answered yet"},
         counted<&IoCounters::inFlight>},
        {{"BUSY", Kind::number, "milliseconds in which the path had requests"},
         counted<&IoCounters::busyMilliseconds>},
        {{"FAILURES", Kind::number, "how often the device-mapper has failed the path"},
         [](Answer answer) { return number(answer.path.failures); }},
    };
}

Columns<PathAnswer> hardwareColumns()
{
    return {
        {{"ACCESS", Kind::text, "what the array says of the path: ALUA's or ANA's state"}, access},
        {{"PREFERRED", Kind::text, "whether the array prefers the path (ALUA)"}, preferred},
        {{"KNAME", Kind::text, "the kernel's own name of the path"}, kernelName},
        {{"MAJMIN", Kind::text, "the kernel's number of the path"}, deviceNumber},
        {{"CTL", Kind::text, "the NVMe controller"}, controller},
        {{"CTLSTATE", Kind::text, "the NVMe controller's state, such as live"}, controllerState},
        {{"TRANSPORT", Kind::text, "how the NVMe controller is reached: pcie, tcp, fc, ..."},
         transport},
        {{"SUBSYSTEM", Kind::text, "the NVMe subsystem that the controllers belong to"}, subsystem},
    };
}

Columns<PathAnswer> changeColumns()
{
    return {
        {{"RPS", Kind::number, "reads a second"}, rated<&IoRates::reads>},
        {{"WPS", Kind::number, "writes a second"}, rated<&IoRates::writes>},
        {{"RBPS", Kind::number, "bytes read a second"}, rated<&IoRates::readBytes>},
        {{"WBPS", Kind::number, "bytes written a second"}, rated<&IoRates::writtenBytes>},
        {{"CHANGE", Kind::text, "what last became of the path: added, removed, changed"},
         changeKind},
        {{"TIME", Kind::text, "when that was seen (UTC)"}, changeTime},
        {{"WAS", Kind::text, "group, state and use before"}, was},
    };
}

} // namespace

DiskFacts factsOf(const DiskPaths& disk)
{
    if (disk.device != nullptr)
        return {disk.device->size(), disk.device->wwid()};
    for (const DiskPath& path : disk.paths) {
        if (path.device != nullptr)
            return {path.device->size(), path.device->wwid()};
    }
    return {};
}

PathAnswer pathAnswer(const DiskPaths& disk, const DiskFacts& facts, const DiskPath& path)
{
    return {disk, facts, path, path.device == nullptr ? std::nullopt : path.device->ioCounters()};
}

const Columns<PathAnswer>& pathColumns(bool isWatched)
{
    static const Columns<PathAnswer> usual =
        concatenated<PathAnswer>({diskColumns(), counterColumns(), hardwareColumns()});
    static const Columns<PathAnswer> watched = concatenated<PathAnswer>({usual, changeColumns()});
    return isWatched ? watched : usual;
}

} // namespace command

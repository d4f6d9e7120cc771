// Any bytes as what the device-mapper says of a map, as the uuid that a program gave to a map, and
// as a device's number and name: what is understood can be written again and is understood the
// same.
//
//     input = text, words with one blank between them
#include <cstddef>
#include <cstdint>
#include <string>

#include "kernel/device_kind.h"
#include "kernel/device_number.h"
#include "kernel/multipath_status.h"
#include "require.h"

using command::MultipathStatus;

namespace {

std::string written(const MultipathStatus::Path& path)
{
    return ' ' + path.number.text() + (path.isActive ? " A " : " F ") +
           std::to_string(path.failures);
}

/// The status without features, handler and words that the command does not read.
std::string written(const MultipathStatus& status)
{
    std::string text =
        "0 0 " + std::to_string(status.groups.size()) + ' ' + std::to_string(status.nextGroup);
    for (const MultipathStatus::Group& group : status.groups) {
        const char* states[] = {"A", "E", "D"};
        text += std::string(" ") + states[static_cast<int>(group.state)] + " 0 " +
                std::to_string(group.paths.size()) + " 0";
        for (const MultipathStatus::Path& path : group.paths)
            text += written(path);
    }
    return text;
}

void checkStatus(const std::string& text)
{
    if (const std::optional<MultipathStatus> status = command::parseMultipathStatus(text)) {
        const std::optional<MultipathStatus> again =
            command::parseMultipathStatus(written(*status));
        FUZZ_REQUIRE(again.has_value());
        FUZZ_REQUIRE(written(*again) == written(*status));
    }
}

void checkUuid(const std::string& text)
{
    const command::MapUuid uuid = command::parseMapUuid(text);
    FUZZ_REQUIRE(uuid.id.size() <= text.size());
    FUZZ_REQUIRE(!uuid.partnum || text.rfind("part", 0) == 0);
}

void checkNumber(const std::string& text)
{
    const std::optional<command::DeviceNumber> number = command::parseDeviceNumber(text);
    if (!number)
        return;
    const std::optional<command::DeviceNumber> again = command::parseDeviceNumber(number->text());
    FUZZ_REQUIRE(again && again->text() == number->text());
}

void checkName(const std::string& text)
{
    for (const char* disk : {"sda", "nvme0n1"}) {
        const std::optional<unsigned int> number = command::partitionNumber(disk, text);
        FUZZ_REQUIRE(!number || text.rfind(disk, 0) == 0);
    }
    FUZZ_REQUIRE(command::kindName(command::kindOfKernelName(text)) != nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    checkStatus(text);
    checkUuid(text);
    checkNumber(text);
    checkName(text);
    return 0;
}

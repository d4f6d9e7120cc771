// Any bytes as what sysfs and udev say of a device: the explanation of it is harmless text, and one
// JSON document.
//
//     input = { value NUL }                       the attributes in the order of `attributes`, then
//                                                 the names that udev gave
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <libudev.h>
#include <nlohmann/json.hpp>

#include "kernel/inventory.h"
#include "kernel/machine.h"
#include "names/explanation.h"
#include "names/explanation_writer.h"
#include "require.h"
#include "tests/command/output/captured_output.h"
#include "tests/support/harmless_text.h"
#include "tests/support/made_up_machine.h"

namespace {

struct Attribute {
    const char* device;
    const char* name;
};

constexpr Attribute attributes[] = {
    {"dm-0", "dm/name"},    {"dm-0", "dm/uuid"}, {"dm-0", "dm/suspended"}, {"dm-0", "dev"},
    {"dm-0", "size"},       {"dm-0", "ro"},      {"dm-0", "stat"},         {"dm-0", "uevent"},
    {"sda", "device/wwid"}, {"sda", "wwid"},     {"sda", "device/state"}};

std::vector<std::string> links;

std::vector<std::string> valuesOf(const std::string& text)
{
    std::vector<std::string> values;
    std::istringstream stream(text);
    for (std::string value; std::getline(stream, value, '\0');)
        values.push_back(value);
    return values;
}

MadeUpMachine& machineWith(const std::vector<std::string>& values)
{
    static MadeUpMachine made;
    static const bool hasDevices =
        (made.addVirtual("dm-0", "254:0"), made.addDisk("sda", "8:0", "0:0:0:1"), true);
    FUZZ_REQUIRE(hasDevices);
    static std::vector<std::string> written(std::size(attributes), "unwritten");
    for (std::size_t number = 0; number < written.size(); ++number) {
        const std::string value = number < values.size() ? values[number] : "";
        if (std::exchange(written[number], value) != value)
            made.set(attributes[number].device, attributes[number].name, value);
    }
    links.assign(values.begin() +
                     static_cast<std::ptrdiff_t>(std::min(values.size(), written.size())),
                 values.end());
    return made;
}

std::string explained(const command::Machine& machine, command::Form form)
{
    CDmpClaimManager manager;
    const std::vector<command::Module> modules = command::makeModules({});
    CapturedOutput output;
    command::ExplanationWriter writer(form, output.stream());
    for (const command::BlockDevice& device : machine.inventory().devices())
        writer.write(explanation(manager, modules, device.path(), command::DeviceLookup(machine)));
    writer.finish();
    return output.text();
}

} // namespace

// These replace libudev's functions: the fields of its records are opaque.
extern "C" {
struct udev_list_entry {
    std::size_t number;
};

udev_list_entry* udev_device_get_devlinks_list_entry(udev_device* /*device*/)
{
    static udev_list_entry entry;
    entry.number = 0;
    return links.empty() ? nullptr : &entry;
}

udev_list_entry* udev_list_entry_get_next(udev_list_entry* entry)
{
    return ++entry->number < links.size() ? entry : nullptr;
}

const char* udev_list_entry_get_name(udev_list_entry* entry)
{
    return links[entry->number].c_str();
}

udev_device* udev_device_new_from_syspath(udev* /*context*/, const char* /*folder*/)
{
    static char device;
    return reinterpret_cast<udev_device*>(&device);
}

udev_device* udev_device_unref(udev_device* /*device*/)
{
    return nullptr;
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const command::Machine machine(machineWith(valuesOf({data, data + size})).roots());
    for (const command::BlockDevice& device : machine.inventory().devices())
        FUZZ_REQUIRE(device.links().size() == links.size());
    std::istringstream lines(explained(machine, command::Form::text));
    for (std::string line; std::getline(lines, line);)
        FUZZ_REQUIRE(isHarmless(line));
    FUZZ_REQUIRE(nlohmann::json::accept(explained(machine, command::Form::json)));
    return 0;
}

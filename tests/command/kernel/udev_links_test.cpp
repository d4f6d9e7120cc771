// udev's database, whose library is replaced.
#include "kernel/udev_links.h"

#include <gmock/gmock.h>

#include <libudev.h>

using command::udevLinks;
using testing::ElementsAre;
using testing::IsEmpty;

struct udev_list_entry {
    const char* name;
    udev_list_entry* next;
};

struct udev_device {
    udev_list_entry* links;
};

struct udev {
    int references;
};

namespace {

udev context{};
udev_list_entry second{"/dev/disk/by-id/wwn-0x3600", nullptr};
udev_list_entry first{"/dev/disk/by-path/pci-0", &second};
udev_device known{&first};
int devices = 0;
bool isWithoutMemory = false;

} // namespace

extern "C" {

udev* udev_new()
{
    if (isWithoutMemory)
        return nullptr;
    ++context.references;
    return &context;
}

udev* udev_unref(udev* /*context*/)
{
    --context.references;
    return nullptr;
}

udev_device* udev_device_new_from_syspath(udev* /*context*/, const char* path)
{
    if (std::string(path) != "/sys/class/block/sda")
        return nullptr;
    ++devices;
    return &known;
}

udev_device* udev_device_unref(udev_device* /*device*/)
{
    --devices;
    return nullptr;
}

udev_list_entry* udev_device_get_devlinks_list_entry(udev_device* device)
{
    return device->links;
}

udev_list_entry* udev_list_entry_get_next(udev_list_entry* entry)
{
    return entry->next;
}

const char* udev_list_entry_get_name(udev_list_entry* entry)
{
    return entry->name;
}
}

namespace {

TEST(UdevLinks, AreTheDatabasesSortedByText)
{
    EXPECT_THAT(udevLinks("/sys/class/block/sda"),
                ElementsAre("/dev/disk/by-id/wwn-0x3600", "/dev/disk/by-path/pci-0"));
    EXPECT_EQ(devices, 0);
    EXPECT_EQ(context.references, 0);
}

TEST(UdevLinks, OfAnUnknownDeviceAreNone)
{
    EXPECT_THAT(udevLinks("/sys/class/block/sdb"), IsEmpty());
    EXPECT_EQ(context.references, 0);
}

TEST(UdevLinks, WithoutTheLibrarysContextAreNone)
{
    isWithoutMemory = true;
    EXPECT_THAT(udevLinks("/sys/class/block/sda"), IsEmpty());
    isWithoutMemory = false;
}

} // namespace

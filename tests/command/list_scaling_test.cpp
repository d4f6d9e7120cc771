// How the work of `dmpclaim list` grows with the machine. Counts the system calls that read sysfs:
// unlike time, their number is the same in each run.
#include "list.h"

#include <cstdarg>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/command/made_up_command.h"
#include "tests/support/disk_letters.h"

namespace {

long calls = 0;

} // namespace

extern "C" int open(const char* name, int flags, ...)
{
    ++calls;
    va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

extern "C" ssize_t readlink(const char* name, char* target, std::size_t size) noexcept
{
    ++calls;
    return syscall(SYS_readlinkat, AT_FDCWD, name, target, size);
}

extern "C" dirent* readdir(DIR* folder)
{
    ++calls;
    static const auto next = reinterpret_cast<dirent* (*)(DIR*)>(dlsym(RTLD_NEXT, "readdir"));
    return next(folder);
}

namespace {

/// The calls for so many disks, each two of which are the paths of a map.
long callsFor(int disks)
{
    MadeUpMachine made;
    for (int number = 0; number < disks; number += 2) {
        const std::string first = "sd" + diskLetters(number);
        const std::string second = "sd" + diskLetters(number + 1);
        made.addDisk(first, "8:" + std::to_string(number), "1:0:0:" + std::to_string(number));
        made.addDisk(second, "9:" + std::to_string(number), "2:0:0:" + std::to_string(number));
        made.addMap("dm-" + std::to_string(number), "254:" + std::to_string(number),
                    "mpath" + diskLetters(number), "mpath-1", {first, second});
    }
    const auto options =
        std::get<command::Options>(command::parseOptions({"list", "-J"}, command::subcommands()));
    CapturedOutput output;
    calls = 0;
    EXPECT_EQ(command::listDevices(options, output.stream(), command::Machine(made.roots())), 0);
    return calls;
}

TEST(ListScaling, TenTimesTheDevicesAreTenTimesTheCalls)
{
    const long few = callsFor(10);
    EXPECT_GT(few, 10);
    EXPECT_LE(callsFor(100), 10 * few);
}

} // namespace

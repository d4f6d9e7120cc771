// What the paths of a machine's multipathed disks cost: reading sysfs, asking the device-mapper for
// the status of each map, and writing the rows. Fails when that takes more than 64 MiB of memory.
//
// The functions of libdevmapper that talk to the kernel are replaced here: there are no such maps.
#include <stdexcept>

#include <libdevmapper.h>

#include "benchmarks/many_disks.h"
#include "benchmarks/peak_memory.h"
#include "commands.h"
#include "kernel/map_status.h"
#include "paths/paths.h"
#include "tests/support/descriptor.h"

/// The map that is asked about, and the answer.
struct dm_task {
    int map = 0;
    std::string target = "multipath";
    std::string parameters;
};

extern "C" {

dm_task* dm_task_create(int /*type*/)
{
    return new dm_task;
}

void dm_task_destroy(dm_task* dmt)
{
    delete dmt;
}

int dm_task_set_major(dm_task* /*task*/, int /*major*/)
{
    return 1;
}

int dm_task_set_minor(dm_task* dmt, int minor)
{
    dmt->map = minor;
    return 1;
}

int dm_task_no_flush(dm_task* /*task*/)
{
    return 1;
}

int dm_task_no_open_count(dm_task* /*task*/)
{
    return 1;
}

/// A group for each of the eight paths of the map dm-N, which are the disks 8N to 8N + 7.
int dm_task_run(dm_task* dmt)
{
    constexpr int pathsOfMap = 8;
    const int first = dmt->map * pathsOfMap;
    dmt->parameters = "2 0 1 0 8 1";
    for (int number = first; number < first + pathsOfMap; ++number)
        dmt->parameters +=
            (number == first ? " A 0 1 0 8:" : " E 0 1 0 8:") + std::to_string(number) + " A 0";
    return 1;
}

void* dm_get_next_target(dm_task* dmt, void* /*next*/, std::uint64_t* /*start*/,
                         std::uint64_t* /*length*/, char** target_type, char** params)
{
    *target_type = dmt->target.data();
    *params = dmt->parameters.data();
    return nullptr;
}
}

namespace {

void list(const ManyDisks& machine, command::OutputStream& output)
{
    static const command::Options options =
        std::get<command::Options>(command::parseOptions({"paths"}, command::subcommands()));
    const std::string control = machine.dev("mapper/control");
    const Descriptor made = openFile(control.c_str(), O_RDWR | O_CREAT);
    const command::DeviceMapper mapper(control);
    const command::PathSources sources{machine.roots(), std::ref(mapper), {}};
    command::StopRequest stop;
    if (command::listPaths(options, output, sources, stop) != 0)
        throw std::runtime_error("a path is not known");
}

} // namespace

int main()
{
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    command::OutputStream output(nowhere.number());
    compareMachines("paths of so many disks",
                    [&](const ManyDisks& machine) { list(machine, output); });
    expectPeakMemory(64);
}

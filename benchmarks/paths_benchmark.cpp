// What the paths of a machine's multipathed disks cost: reading sysfs, reading the status of each
// map, and writing the rows.
#include <benchmark/benchmark.h>

#include "benchmarks/many_disks.h"
#include "commands.h"
#include "paths/paths.h"
#include "tests/support/descriptor.h"

namespace {

/// A group for each of the eight paths of the map dm-N, which are the disks 8N to 8N + 7.
command::MapStatus statusOf(const command::BlockDevice& map)
{
    constexpr int pathsOfMap = 8;
    const int first = std::stoi(map.kernelName().substr(3)) * pathsOfMap;
    std::string parameters = "2 0 1 0 8 1";
    for (int number = first; number < first + pathsOfMap; ++number)
        parameters +=
            (number == first ? " A 0 1 0 8:" : " E 0 1 0 8:") + std::to_string(number) + " A 0";
    return {{}, "multipath", parameters};
}

void list(benchmark::State& state, const ManyDisks& machine)
{
    const command::Options options =
        std::get<command::Options>(command::parseOptions({"paths"}, command::subcommands()));
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    command::OutputStream output(nowhere.number());
    for (auto _ : state) {
        command::StopRequest stop;
        if (command::listPaths(options, output, {machine.roots(), statusOf, {}}, stop) != 0)
            state.SkipWithError("a path is not known");
    }
}

void listMany(benchmark::State& state)
{
    static const ManyDisks machine(32768);
    list(state, machine);
}

void listFew(benchmark::State& state)
{
    static const ManyDisks machine(3280);
    list(state, machine);
}

// Time in proportion: ten times the devices cost ten times the time, at most twelve.
BENCHMARK(listMany)->Name("paths of 32768 disks against 3280/ours");
BENCHMARK(listFew)->Name("paths of 32768 disks against 3280/reference");

} // namespace

// What the list of a machine's block devices costs: reading sysfs, asking the library about each
// name, and writing the rows.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "commands.h"
#include "list.h"
#include "tests/support/disk_letters.h"
#include "tests/support/made_up_machine.h"

namespace {

/// A machine with so many disks, eight of which are the paths of a multipath map each.
class Machine : public MadeUpMachine {
public:
    explicit Machine(int disks)
    {
        constexpr int pathsOfMap = 8;
        std::vector<std::string> paths;
        for (int number = 0; number < disks; ++number) {
            paths.push_back("sd" + diskLetters(number));
            addDisk(paths.back(), "8:" + std::to_string(number),
                    "2:0:" + std::to_string(number) + ":0");
            set(paths.back(), "size", "2097152");
            if (paths.size() == pathsOfMap) {
                const std::string map = std::to_string(number / pathsOfMap);
                addMap("dm-" + map, "254:" + map, "mpath" + diskLetters(number), "mpath-3600" + map,
                       paths);
                paths.clear();
            }
        }
    }
};

void list(benchmark::State& state, const Machine& machine)
{
    const command::Options options =
        std::get<command::Options>(command::parseOptions({"list"}, command::subcommands()));
    std::FILE* nowhere = std::fopen("/dev/null", "w");
    command::OutputStream output(nowhere);
    for (auto _ : state)
        command::listDevices(options, output, command::Machine(machine.roots()));
    std::fclose(nowhere);
}

void listMany(benchmark::State& state)
{
    static const Machine machine(32768);
    list(state, machine);
}

void listFew(benchmark::State& state)
{
    static const Machine machine(3277);
    list(state, machine);
}

// Time in proportion: ten times the devices cost ten times the time, at most twelve.
BENCHMARK(listMany)->Name("list with 32768 disks against 3277/ours");
BENCHMARK(listFew)->Name("list with 32768 disks against 3277/reference");

} // namespace

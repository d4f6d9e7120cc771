// What the list of a machine's block devices costs: reading sysfs, asking the library about each
// name, and writing the rows. Fails when that takes more than 64 MiB of memory.
#include <benchmark/benchmark.h>

#include "benchmarks/many_disks.h"
#include "benchmarks/peak_memory.h"
#include "commands.h"
#include "list.h"
#include "tests/support/descriptor.h"

namespace {

void list(benchmark::State& state, const ManyDisks& machine)
{
    const command::Options options =
        std::get<command::Options>(command::parseOptions({"list"}, command::subcommands()));
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    command::OutputStream output(nowhere.number());
    for (auto _ : state)
        command::listDevices(options, output, command::Machine(machine.roots()));
    expectPeakMemory(64);
}

void listMany(benchmark::State& state)
{
    static const ManyDisks machine(32768);
    list(state, machine);
}

void listFew(benchmark::State& state)
{
    static const ManyDisks machine(3277);
    list(state, machine);
}

// Time in proportion: ten times the devices cost ten times the time, at most twelve.
BENCHMARK(listMany)->Name("list with 32768 disks against 3277/ours");
BENCHMARK(listFew)->Name("list with 32768 disks against 3277/reference");

} // namespace

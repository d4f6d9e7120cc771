// What the list of a machine's block devices costs: reading sysfs, asking the library about each
// name, and writing the rows. Fails when that takes more than 64 MiB of memory.
#include "benchmarks/many_disks.h"
#include "benchmarks/peak_memory.h"
#include "commands.h"
#include "list.h"
#include "tests/support/descriptor.h"

int main()
{
    const command::Options options =
        std::get<command::Options>(command::parseOptions({"list"}, command::subcommands()));
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    command::OutputStream output(nowhere.number());
    compareMachines("list so many disks", [&](const ManyDisks& machine) {
        command::listDevices(options, output, command::Machine(machine.roots()));
    });
    expectPeakMemory(64);
}

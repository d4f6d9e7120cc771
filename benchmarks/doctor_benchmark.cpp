// What checking a machine without the volume manager costs: reading the names of its block devices,
// and comparing them with the kernel's.
#include <benchmark/benchmark.h>

#include "doctor/device_checks.h"
#include "tests/command/doctor/fake_machine.h"
#include "tests/support/disk_letters.h"

namespace {

/// A machine with so many disks, and a map for every fourth of them.
class Machine : public FakeMachine {
public:
    explicit Machine(int disks)
    {
        for (int number = 0; number < disks; ++number) {
            addDeviceWithNode("sd" + diskLetters(number));
            if (number % 4 == 0)
                addMapWithNode("mpath" + diskLetters(number), "mpath-" + std::to_string(number));
        }
    }
};

void check(benchmark::State& state, const Machine& machine)
{
    std::size_t findings = 0;
    for (auto _ : state) {
        const command::Inventory kernel(machine.roots());
        command::checkDevices(kernel, machine.drivers(), machine.readings(), {},
                              [&](const command::Finding&) { ++findings; });
    }
    benchmark::DoNotOptimize(findings);
}

void checkMany(benchmark::State& state)
{
    static const Machine machine(8192);
    check(state, machine);
}

void checkFew(benchmark::State& state)
{
    static const Machine machine(819);
    check(state, machine);
}

// Time in proportion: ten times the devices cost ten times the time, at most twelve.
BENCHMARK(checkMany)->Name("doctor with 8192 disks against 819/ours");
BENCHMARK(checkFew)->Name("doctor with 8192 disks against 819/reference");

} // namespace

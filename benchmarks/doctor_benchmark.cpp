// What examining a machine without the volume manager costs: reading the names of its block
// devices, looking for lost paths, and comparing the names with the kernel's devices.
#include <benchmark/benchmark.h>

#include "benchmarks/many_disks.h"
#include "doctor/examination.h"

namespace {

void examine(benchmark::State& state, const ManyDisks& machine)
{
    const std::vector<command::Module> modules = command::makeModules({});
    const auto stop = std::make_shared<command::StopRequest>();
    command::ExaminationOrder order;
    order.roots = machine.roots();
    order.showProgress = [](const std::string&) {};
    std::size_t disks = 0;
    for (auto _ : state)
        disks +=
            command::examine(order, modules, stop, [](const command::Finding&) {}).disks.size();
    benchmark::DoNotOptimize(disks);
}

void examineMany(benchmark::State& state)
{
    static const ManyDisks machine(32768);
    examine(state, machine);
}

void examineFew(benchmark::State& state)
{
    static const ManyDisks machine(3277);
    examine(state, machine);
}

// Time in proportion: ten times the devices cost ten times the time, at most twelve.
BENCHMARK(examineMany)->Name("doctor with 32768 disks against 3277/ours");
BENCHMARK(examineFew)->Name("doctor with 32768 disks against 3277/reference");

} // namespace

// What the naming questions cost.
#include <benchmark/benchmark.h>

#include <string>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"

namespace {

void removeSuffix(benchmark::State& state)
{
    CDmpPowerPathClaim module;
    const std::string partition =
        "/dev/emcpowera" + std::string(static_cast<std::size_t>(state.range(0)), '7');
    unsigned int partnum = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(module.removePartitionSuffix(partition, partnum));
}

// One pass over the path: ten times the digits cost ten times the time at most.
BENCHMARK(removeSuffix)->Name("remove 100000 digits against 10000/ours")->Arg(100000);
BENCHMARK(removeSuffix)->Name("remove 100000 digits against 10000/reference")->Arg(10000);

} // namespace

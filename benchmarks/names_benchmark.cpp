// What the naming questions cost.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"

using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using koze_pdk_4_4::CZeTraceStderrSink;

namespace {

std::string partitionWithDigits(const benchmark::State& state)
{
    return "/dev/emcpowera" + std::string(static_cast<std::size_t>(state.range(0)), '7');
}

void removeSuffix(benchmark::State& state)
{
    CDmpPowerPathClaim module;
    const std::string partition = partitionWithDigits(state);
    unsigned int partnum = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(module.removePartitionSuffix(partition, partnum));
}

// One pass over the path: ten times the digits cost ten times the time at most.
BENCHMARK(removeSuffix)->Name("remove 100000 digits against 10000/ours")->Arg(100000);
BENCHMARK(removeSuffix)->Name("remove 100000 digits against 10000/reference")->Arg(10000);

std::string scannedBackward(std::string device, unsigned int& partnum)
{
    std::size_t digits = device.size();
    while (digits > 0 && device[digits - 1] >= '0' && device[digits - 1] <= '9')
        --digits;
    partnum = static_cast<unsigned int>(std::strtol(device.c_str() + digits, nullptr, 10));
    device.resize(digits);
    return device;
}

void scanBackward(benchmark::State& state)
{
    const std::string partition = partitionWithDigits(state);
    unsigned int partnum = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(scannedBackward(partition, partnum));
}

// The module against the least that any removal does.
BENCHMARK(removeSuffix)->Name("remove 2 digits/ours")->Arg(2);
BENCHMARK(scanBackward)->Name("remove 2 digits/reference")->Arg(2);
BENCHMARK(removeSuffix)->Name("remove 10000 digits/ours")->Arg(10000);
BENCHMARK(scanBackward)->Name("remove 10000 digits/reference")->Arg(10000);

void claim(benchmark::State& state, const std::string& device)
{
    CDmpClaimManager manager;
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.claim(device));
}

void findMarkers(benchmark::State& state, const std::string& device)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(device.find("/dev/sd"));
        benchmark::DoNotOptimize(device.find("/dev/emcpower"));
        benchmark::DoNotOptimize(device.find("/dev/mapper/"));
        benchmark::DoNotOptimize(device.find('-'));
    }
}

// The manager, silent, against the bare searches; the rest is lists and copies of the path.
BENCHMARK_CAPTURE(claim, disk, "/dev/sdc")->Name("claim /dev/sdc/ours");
BENCHMARK_CAPTURE(findMarkers, disk, "/dev/sdc")->Name("claim /dev/sdc/reference");
BENCHMARK_CAPTURE(claim, mapper, "/dev/mapper/mpathbp2")->Name("claim /dev/mapper/mpathbp2/ours");
BENCHMARK_CAPTURE(findMarkers, mapper, "/dev/mapper/mpathbp2")
    ->Name("claim /dev/mapper/mpathbp2/reference");
BENCHMARK_CAPTURE(claim, power, "/dev/emcpowerc12")->Name("claim /dev/emcpowerc12/ours");
BENCHMARK_CAPTURE(findMarkers, power, "/dev/emcpowerc12")->Name("claim /dev/emcpowerc12/reference");

void claimWithQuietLog(benchmark::State& state)
{
    CZeTraceLogHandle log(new CZeTraceLog);
    log->setSink(new CZeTraceStderrSink(0));
    CDmpClaimManager manager;
    manager.registerTraceLog(log);
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.claim("/dev/sdc"));
}

void claimWithoutLog(benchmark::State& state)
{
    claim(state, "/dev/sdc");
}

// A log that wants no line costs its handles and fourteen calls.
BENCHMARK(claimWithQuietLog)->Name("claim with a log that wants nothing/ours");
BENCHMARK(claimWithoutLog)->Name("claim with a log that wants nothing/reference");

} // namespace

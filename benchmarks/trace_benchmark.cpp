// What tracing costs a host, with and without a log.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "pdk/include/czetracelog.h"

namespace {

using koze_pdk_4_4::CZeTraceable;
using koze_pdk_4_4::CZeTraceCallbackSink;
using koze_pdk_4_4::CZeTraceFileSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;

/// A file that is removed at the end.
class ScratchFile {
public:
    ScratchFile() { close(mkstemp(m_path.data())); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { unlink(m_path.c_str()); }

    const std::string& path() const { return m_path; }
    int open() const { return ::open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC); }

private:
    std::string m_path = (std::filesystem::temp_directory_path() / "trace-XXXXXX").string();
};

const std::string storedLine =
    "2026-11-21T10:53:24.123+00:00 [47110] 6 Entering Function claim [24, dmp_claim_manager.cpp]\n";

void lineToFile(benchmark::State& state)
{
    const ScratchFile file;
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceFileSink(6, file.path()));
    for (auto _ : state)
        log->trace(6, "Entering Function %s [%d, %s]", "claim", 24, "dmp_claim_manager.cpp");
}

void bareWrite(benchmark::State& state)
{
    const ScratchFile file;
    const int descriptor = file.open();
    for (auto _ : state)
        benchmark::DoNotOptimize(write(descriptor, storedLine.data(), storedLine.size()));
    close(descriptor);
}

void openPerLine(benchmark::State& state)
{
    const ScratchFile file;
    for (auto _ : state) {
        const int descriptor = file.open();
        benchmark::DoNotOptimize(write(descriptor, storedLine.data(), storedLine.size()));
        close(descriptor);
    }
}

BENCHMARK(lineToFile)->Name("line to a file against a bare write/ours");
BENCHMARK(bareWrite)->Name("line to a file against a bare write/reference");
BENCHMARK(lineToFile)->Name("line to a file against opening it each time/ours");
BENCHMARK(openPerLine)->Name("line to a file against opening it each time/reference");

/// An operation of the size of a name question.
class Operation : public CZeTraceable {
public:
    __attribute__((noinline)) std::size_t traced(const std::string& name)
    {
        CZE_TRACE_FUNCTION();
        CZE_TRACE(3, "INFO: %s", name.c_str());
        return name.find("/dev/mapper/");
    }

    __attribute__((noinline)) std::size_t untraced(const std::string& name)
    {
        return name.find("/dev/mapper/");
    }
};

const std::string device = "/dev/disk/by-id/sdc";

void tracedWithoutLog(benchmark::State& state)
{
    Operation operation;
    for (auto _ : state)
        benchmark::DoNotOptimize(operation.traced(device));
}

void untraced(benchmark::State& state)
{
    Operation operation;
    for (auto _ : state)
        benchmark::DoNotOptimize(operation.untraced(device));
}

void tracedAtUnwantedLevels(benchmark::State& state)
{
    Operation operation;
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceCallbackSink(2, [](int, std::string_view) { std::abort(); }));
    operation.registerTraceLog(log);
    for (auto _ : state)
        benchmark::DoNotOptimize(operation.traced(device));
}

BENCHMARK(tracedWithoutLog)->Name("operation without a log against untraced/ours");
BENCHMARK(untraced)->Name("operation without a log against untraced/reference");
BENCHMARK(tracedAtUnwantedLevels)->Name("unwanted levels against no log/ours");
BENCHMARK(tracedWithoutLog)->Name("unwanted levels against no log/reference");

} // namespace

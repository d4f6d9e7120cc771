// What it costs to run a program: against a bare posix_spawn, read and waitpid of the same program,
// which neither limits nor cuts anything, and against itself in hosts of other sizes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"

namespace {

constexpr char empty[] = "/bin/true";
constexpr char tenLines[] = LINES_PROGRAM " 10 63";
constexpr char mebibyte[] = LINES_PROGRAM " 16384 63";

/// Keeps freed memory, as the heap of a host that has run for a while does. Otherwise free would
/// return the lines of each run to the kernel, and page faults would dominate the measurement.
const bool heapIsKept =
    mallopt(M_TRIM_THRESHOLD, 1 << 30) == 1 && mallopt(M_MMAP_THRESHOLD, 1 << 30) == 1;

void expect(bool success)
{
    if (!success)
        throw std::runtime_error("a program did not run as it should");
}

void runOurs(const std::string& command)
{
    koze_pdk_4_4::CZeExecPipePosix runner(1);
    std::vector<std::string> lines;
    expect(runner.Exec(command, lines, "", 600, "", "", "") == 0);
    benchmark::DoNotOptimize(lines.data());
}

pid_t spawn(std::string command, int output)
{
    std::vector<char*> arguments;
    char* rest = nullptr;
    for (char* argument = strtok_r(command.data(), " ", &rest); argument != nullptr;
         argument = strtok_r(nullptr, " ", &rest))
        arguments.push_back(argument);
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t pid = 0;
    expect(posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environ) == 0);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

void runReference(const std::string& command)
{
    static char bytes[64 << 10];
    int ends[2];
    expect(pipe2(ends, O_CLOEXEC) == 0);
    const pid_t pid = spawn(command, ends[1]);
    close(ends[1]);
    while (read(ends[0], bytes, sizeof bytes) > 0)
        benchmark::ClobberMemory();
    close(ends[0]);
    int status = 0;
    expect(waitpid(pid, &status, 0) == pid && status == 0);
}

void ours(benchmark::State& state, const char* command)
{
    for (auto _ : state)
        runOurs(command);
}

void reference(benchmark::State& state, const char* command)
{
    for (auto _ : state)
        runReference(command);
}

/// Few runs at a time, and many times: with short turns a change in the machine's load affects both
/// of a pair alike.
void inShortTurns(benchmark::internal::Benchmark* one)
{
    one->Iterations(4)->Repetitions(101);
}

// To be at most 1.10.
BENCHMARK_CAPTURE(ours, empty, empty)
    ->Name("empty run against posix_spawn/ours")
    ->Apply(inShortTurns);
BENCHMARK_CAPTURE(reference, empty, empty)
    ->Name("empty run against posix_spawn/reference")
    ->Apply(inShortTurns);
BENCHMARK_CAPTURE(ours, ten, tenLines)
    ->Name("ten lines against posix_spawn/ours")
    ->Apply(inShortTurns);
BENCHMARK_CAPTURE(reference, ten, tenLines)
    ->Name("ten lines against posix_spawn/reference")
    ->Apply(inShortTurns);
BENCHMARK_CAPTURE(ours, mebibyte, mebibyte)
    ->Name("1 MiB of lines against posix_spawn/ours")
    ->Apply(inShortTurns);
BENCHMARK_CAPTURE(reference, mebibyte, mebibyte)
    ->Name("1 MiB of lines against posix_spawn/reference")
    ->Apply(inShortTurns);

/// Our empty run in a host that has touched 1 GiB, in small pages, and keeps `state.range(0)` of
/// it. Both hosts touch it, because that uses up processor time that the runs would miss.
void inHostThatKeeps(benchmark::State& state)
{
    constexpr std::size_t size = std::size_t{1} << 30;
    const auto kept = static_cast<std::size_t>(state.range(0));
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    expect(memory != MAP_FAILED);
    madvise(memory, size, MADV_NOHUGEPAGE);
    std::memset(memory, 1, size);
    madvise(static_cast<char*>(memory) + kept, size - kept, MADV_DONTNEED);
    ours(state, empty);
    munmap(memory, size);
}

// To be at most 1.3.
BENCHMARK(inHostThatKeeps)->Name("host of 1 GiB against none/ours")->Arg(1 << 30);
BENCHMARK(inHostThatKeeps)->Name("host of 1 GiB against none/reference")->Arg(0);

/// Our empty run in a host that may open `state.range(0)` descriptors.
void underDescriptorLimit(benchmark::State& state)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit limit{static_cast<rlim_t>(state.range(0)), before.rlim_max};
    expect(setrlimit(RLIMIT_NOFILE, &limit) == 0);
    ours(state, empty);
    setrlimit(RLIMIT_NOFILE, &before);
}

// No difference.
BENCHMARK(underDescriptorLimit)
    ->Name("limit of 20000 descriptors against 1024/ours")
    ->Arg(20000)
    ->Apply(inShortTurns);
BENCHMARK(underDescriptorLimit)
    ->Name("limit of 20000 descriptors against 1024/reference")
    ->Arg(1024)
    ->Apply(inShortTurns);

} // namespace

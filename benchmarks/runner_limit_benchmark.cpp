// How long a program that ignores SIGTERM keeps its caller at a limit of one second, and how many
// processes are left running.
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <unistd.h>

#include "benchmarks/comparison.h"
#include "benchmarks/runners.h"

namespace {

constexpr char markName[] = "BENCHMARK_RUN";

/// The processes that hold the mark in the environment that they were started with.
std::vector<pid_t> processesWith(const std::string& mark)
{
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        std::ifstream file(entry.path() / "environ");
        const std::string environment(std::istreambuf_iterator<char>(file), {});
        if (std::isdigit(name.front()) != 0 && environment.find(mark) != std::string::npos)
            found.push_back(std::stoi(name));
    }
    return found;
}

/// Marks what the runner starts, and ends what it leaves.
Result runForSecond(const Runner& runner)
{
    const std::string mark = runner.name + ("-" + std::to_string(getpid()));
    setenv(markName, mark.c_str(), 1);
    const double begin = secondsOf(CLOCK_MONOTONIC);
    runner.runForSecond(STUBBORN_PROGRAM);
    const double seconds = secondsOf(CLOCK_MONOTONIC) - begin;
    std::this_thread::sleep_for(std::chrono::milliseconds(200)); // What was killed is ending.
    const std::vector<pid_t> left = processesWith(markName + ("=" + mark));
    for (const pid_t process : left)
        kill(process, SIGKILL);
    return {runner.name, {seconds * 1e9}, static_cast<int>(left.size())};
}

} // namespace

int main()
{
    std::vector<Result> results;
    for (const Runner& runner : runners())
        results.push_back(runForSecond(runner));
    print("a limit of one second", results);
}

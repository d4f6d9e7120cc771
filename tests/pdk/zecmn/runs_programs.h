#ifndef RUNS_PROGRAMS_H
#define RUNS_PROGRAMS_H

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "tests/support/open_descriptors.h"

/// The command line of a helper program of programs/; an absolute path is not changed.
inline std::string commandLine(const std::string& command)
{
    return command.empty() || command.front() == '/' ? command : PROGRAMS "/" + command;
}

inline std::string contentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The processes that have `variable`, NAME=VALUE, in the environment they were started with.
inline std::vector<std::string> processesWith(const std::string& variable)
{
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string environment = '\0' + contentsOf(entry.path() / "environ");
        if (environment.find('\0' + variable + '\0') != std::string::npos)
            found.push_back(entry.path().filename().string());
    }
    return found;
}

/// The signals that this thread blocks, and those that the process handles or ignores.
inline std::vector<std::string> signalState()
{
    std::vector<std::string> state;
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    for (int signal = 1; signal < 65; ++signal) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (sigismember(&blocked, signal) == 1)
            state.push_back(std::to_string(signal) + " blocked");
        if (action.sa_handler != SIG_DFL)
            state.push_back(std::to_string(signal) + " handled");
    }
    return state;
}

/// The processor time that this thread has used.
inline std::chrono::nanoseconds threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Base of the tests that run programs: each must leave the host as it found it.
class RunsPrograms : public testing::Test {
protected:
    /// A variable for the programs' environment, by which their processes are found. It is unique,
    /// because tests run at the same time.
    const std::string& mark() const { return m_mark; }

    /// Waits first: a background process that a program left ends once its output has no reader.
    void TearDown() override
    {
        awaitNobodyLeft();
        EXPECT_EQ(openDescriptors(), m_descriptors);
        EXPECT_EQ(signalState(), m_signals);
        EXPECT_EQ(std::filesystem::current_path(), m_directory);
        EXPECT_EQ(prctl(PR_GET_DUMPABLE), m_dumpable);
        expectNoChild();
    }

    /// Expects that no marked process is left now, without waiting for it to end.
    void expectNobodyLeft() const { EXPECT_EQ(processesWith(m_mark), std::vector<std::string>()); }

    void awaitNobodyLeft() const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!processesWith(m_mark).empty() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        expectNobodyLeft();
    }

    /// Expects that this process has no child, running or zombie.
    static void expectNoChild()
    {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }

private:
    std::string m_mark =
        "RUNNER_TEST=" + std::to_string(getpid()) + "_" +
        std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    std::set<std::string> m_descriptors = openDescriptors();
    std::vector<std::string> m_signals = signalState();
    std::filesystem::path m_directory = std::filesystem::current_path();
    int m_dumpable = prctl(PR_GET_DUMPABLE);
};

#endif

#ifndef RUNS_PROGRAMS_H
#define RUNS_PROGRAMS_H

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

/// The command line of a helper program of programs/; an absolute path is not changed.
std::string commandLine(const std::string& command);

std::string contentsOf(const std::filesystem::path& file);

/// The processes that have `variable`, NAME=VALUE, in the environment they were started with.
std::vector<std::string> processesWith(const std::string& variable);

/// The signals that this thread blocks, and those that the process handles or ignores.
std::vector<std::string> signalState();

/// The processor time that this thread has used.
std::chrono::nanoseconds threadTime();

/// Base of the tests that run programs: each must leave the host as it found it.
class RunsPrograms : public testing::Test {
protected:
    RunsPrograms();

    /// A variable for the programs' environment, by which their processes are found. It is unique,
    /// because tests run at the same time.
    const std::string& mark() const { return m_mark; }

    /// Waits first: a background process that a program left ends once its output has no reader.
    void TearDown() override;

    /// Expects that no marked process is left now, without waiting for it to end.
    void expectNobodyLeft() const;

    void awaitNobodyLeft() const;

    /// Expects that this process has no child, running or zombie.
    static void expectNoChild();

private:
    std::string m_mark;
    std::set<std::string> m_descriptors;
    std::vector<std::string> m_signals;
    std::filesystem::path m_directory;
    int m_dumpable;
};

#endif

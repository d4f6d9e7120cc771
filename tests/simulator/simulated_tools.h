#ifndef SIMULATED_TOOLS_H
#define SIMULATED_TOOLS_H

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/namespaces.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

using Json = nlohmann::ordered_json;

/// The lines of a text, without their ends.
std::vector<std::string> splitLines(const std::string& text);

/// The simulated tools with a state file of the test's own.
class SimulatedTools : public testing::Test {
protected:
    std::string statePath() const { return m_folder.file("state.json"); }
    std::string logPath() const { return m_folder.file("state.json.log"); }
    std::filesystem::path folder() const;

    static std::filesystem::path scenarios();

    void write(const std::string& text) const;
    void write(const Json& state) const;
    void useScenario(const std::string& name) const { write(scenario(name)); }

    static Json scenario(const std::string& name);

    /// The scenario `healthy` with one fault.
    void useFault(const Json& fault) const;

    /// The scenario `healthy` with its node stale.
    void useStale(const Json& stale) const;

    Json state() const;
    std::vector<std::string> log() const { return linesOf(logPath()); }

    /// The command line of one of the tools.
    static std::vector<std::string> tool(const std::string& name,
                                         const std::vector<std::string>& arguments);

    /// Starts `command` for this test's state file.
    Process start(const std::vector<std::string>& command) const;

    Result kodmpadm(const std::vector<std::string>& arguments) const;
    Result kodisk(const std::vector<std::string>& arguments) const;
    Result nodeOf(const std::string& disk) const;
    Result pathsOf(const std::string& node) const;

    /// The call with a limit of 200 ms: when that passes, SIGTERM ends it and the status is 124.
    Result limited(const std::vector<std::string>& call) const;

    static constexpr int limitPassed = 124;

private:
    Setting environment() const;

    TemporaryFolder m_folder;
};

/// What `nodeOf` prints in the scenario `healthy`.
inline constexpr char healthyNode[] = "NAME       STATE      GROUP    PATHS\n"
                                      "====================================\n"
                                      "arr0_17    ENABLED    arr0     2\n";

testing::Matcher<Result> Succeeds(const std::string& output = "");

/// Expects that only a message with `reason` is printed.
testing::Matcher<Result> Fails(int status, const std::string& reason);

testing::Matcher<Result> DiesBy(int signal);

void PrintTo(const Result& ended, std::ostream* stream);

#endif

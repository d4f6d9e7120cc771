#ifndef SIMULATED_TOOLS_H
#define SIMULATED_TOOLS_H

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/namespaces.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

using Json = nlohmann::ordered_json;

/// The lines of a text, without their ends.
inline std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// The simulated tools with a state file of the test's own.
class SimulatedTools : public testing::Test {
protected:
    std::string statePath() const { return m_folder.file("state.json"); }
    std::string logPath() const { return m_folder.file("state.json.log"); }
    std::filesystem::path folder() const
    {
        return std::filesystem::path(statePath()).parent_path();
    }

    static std::filesystem::path scenarios() { return SIMULATOR_SCENARIOS; }

    void write(const std::string& text) const { std::ofstream(statePath()) << text; }
    void write(const Json& state) const { write(state.dump()); }
    void useScenario(const std::string& name) const { write(scenario(name)); }

    static Json scenario(const std::string& name)
    {
        return Json::parse(textOf(scenarios() / (name + ".json")));
    }

    /// The scenario `healthy` with one fault.
    void useFault(const Json& fault) const
    {
        Json state = scenario("healthy");
        state["faults"] = Json::array({fault});
        write(state);
    }

    /// The scenario `healthy` with its node stale.
    void useStale(const Json& stale) const
    {
        Json state = scenario("healthy");
        state["arrays"][0]["nodes"][0]["stale"] = stale;
        write(state);
    }

    Json state() const { return Json::parse(textOf(statePath())); }
    std::vector<std::string> log() const { return linesOf(logPath()); }

    /// The command line of one of the tools.
    static std::vector<std::string> tool(const std::string& name,
                                         const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command{SIMULATOR_TOOLS "/" + name};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    /// Starts `command` for this test's state file.
    Process start(const std::vector<std::string>& command) const
    {
        return Process(command, environment());
    }

    Result kodmpadm(const std::vector<std::string>& arguments) const
    {
        return start(tool("kodmpadm", arguments)).finish();
    }

    Result kodisk(const std::vector<std::string>& arguments) const
    {
        return start(tool("kodisk", arguments)).finish();
    }

    Result nodeOf(const std::string& disk) const
    {
        return kodmpadm({"getdmpnode", "nodename=" + disk});
    }

    Result pathsOf(const std::string& node) const
    {
        return kodmpadm({"getsubpaths", "dmpnodename=" + node});
    }

    /// The call with a limit of 200 ms: when that passes, SIGTERM ends it and the status is 124.
    Result limited(const std::vector<std::string>& call) const
    {
        std::vector<std::string> command{"/usr/bin/timeout", "0.2"};
        command.insert(command.end(), call.begin(), call.end());
        return start(command).finish();
    }

    static constexpr int limitPassed = 124;

private:
    Setting environment() const
    {
        Setting setting;
        setting.environment = {"KOVM_SIMULATOR_STATE=" + statePath()};
        return setting;
    }

    TemporaryFolder m_folder;
};

/// What `nodeOf` prints in the scenario `healthy`.
inline constexpr char healthyNode[] = "NAME       STATE      GROUP    PATHS\n"
                                      "====================================\n"
                                      "arr0_17    ENABLED    arr0     2\n";

inline auto Succeeds(const std::string& output = "")
{
    return testing::AllOf(testing::Field("status", &Result::status, 0),
                          testing::Field("output", &Result::output, output),
                          testing::Field("errors", &Result::errors, ""));
}

/// Expects that only a message with `reason` is printed.
inline auto Fails(int status, const std::string& reason)
{
    return testing::AllOf(testing::Field("status", &Result::status, status),
                          testing::Field("output", &Result::output, ""),
                          testing::Field("errors", &Result::errors, testing::HasSubstr(reason)));
}

inline auto DiesBy(int signal)
{
    return testing::Field("status", &Result::status, -signal);
}

inline void PrintTo(const Result& ended, std::ostream* stream)
{
    *stream << "status " << ended.status << ", output \"" << ended.output << "\", errors \""
            << ended.errors << '"';
}

#endif

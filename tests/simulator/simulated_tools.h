#ifndef SIMULATED_TOOLS_H
#define SIMULATED_TOOLS_H

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "process.h"

using Json = nlohmann::ordered_json;

inline std::string fileText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A new folder that goes with its owner.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "dmpclaim-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        m_path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// The lines of a text, without their ends.
inline std::vector<std::string> linesOf(const std::string& text)
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
    SimulatedTools() { setenv("KOVM_SIMULATOR_STATE", statePath().c_str(), 1); }

    const std::filesystem::path& folder() const { return m_folder.path(); }
    std::filesystem::path statePath() const { return folder() / "state.json"; }
    std::filesystem::path logPath() const { return folder() / "state.json.log"; }

    static std::filesystem::path scenarios() { return SIMULATOR_SCENARIOS; }

    void write(const std::string& text) const { std::ofstream(statePath()) << text; }
    void write(const Json& state) const { write(state.dump()); }
    void useScenario(const std::string& name) const { write(scenario(name)); }

    static Json scenario(const std::string& name)
    {
        return Json::parse(fileText(scenarios() / (name + ".json")));
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

    Json state() const { return Json::parse(fileText(statePath())); }
    std::vector<std::string> log() const { return linesOf(fileText(logPath())); }

    /// The command line of one of the tools.
    static std::vector<std::string> tool(const std::string& name,
                                         const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command{SIMULATOR_TOOLS "/" + name};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    static Result kodmpadm(const std::vector<std::string>& arguments)
    {
        return Process(tool("kodmpadm", arguments)).finish();
    }

    static Result kodisk(const std::vector<std::string>& arguments)
    {
        return Process(tool("kodisk", arguments)).finish();
    }

    static Result nodeOf(const std::string& disk)
    {
        return kodmpadm({"getdmpnode", "nodename=" + disk});
    }

    static Result pathsOf(const std::string& node)
    {
        return kodmpadm({"getsubpaths", "dmpnodename=" + node});
    }

private:
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

/// Nothing is printed but a message that holds `reason`.
inline auto Fails(int status, const std::string& reason)
{
    return testing::AllOf(testing::Field("status", &Result::status, status),
                          testing::Field("output", &Result::output, ""),
                          testing::Field("errors", &Result::errors, testing::HasSubstr(reason)));
}

inline auto DiesBy(int signal)
{
    return testing::Field("status", &Result::status, 128 + signal);
}

inline void PrintTo(const Result& ended, std::ostream* stream)
{
    *stream << "status " << ended.status << ", output \"" << ended.output << "\", errors \""
            << ended.errors << '"';
}

#endif

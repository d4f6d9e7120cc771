#include "simulated_tools.h"

#include <fstream>
#include <sstream>

using testing::AllOf;
using testing::Field;
using testing::HasSubstr;

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::filesystem::path SimulatedTools::folder() const
{
    return std::filesystem::path(statePath()).parent_path();
}

std::filesystem::path SimulatedTools::scenarios()
{
    return SIMULATOR_SCENARIOS;
}

void SimulatedTools::write(const std::string& text) const
{
    std::ofstream(statePath()) << text;
}

void SimulatedTools::write(const Json& state) const
{
    write(state.dump());
}

Json SimulatedTools::scenario(const std::string& name)
{
    return Json::parse(textOf(scenarios() / (name + ".json")));
}

void SimulatedTools::useFault(const Json& fault) const
{
    Json state = scenario("healthy");
    state["faults"] = Json::array({fault});
    write(state);
}

void SimulatedTools::useStale(const Json& stale) const
{
    Json state = scenario("healthy");
    state["arrays"][0]["nodes"][0]["stale"] = stale;
    write(state);
}

Json SimulatedTools::state() const
{
    return Json::parse(textOf(statePath()));
}

std::vector<std::string> SimulatedTools::tool(const std::string& name,
                                              const std::vector<std::string>& arguments)
{
    std::vector<std::string> command{SIMULATOR_TOOLS "/" + name};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Process SimulatedTools::start(const std::vector<std::string>& command) const
{
    return Process(command, environment());
}

Result SimulatedTools::kodmpadm(const std::vector<std::string>& arguments) const
{
    return start(tool("kodmpadm", arguments)).finish();
}

Result SimulatedTools::kodisk(const std::vector<std::string>& arguments) const
{
    return start(tool("kodisk", arguments)).finish();
}

Result SimulatedTools::nodeOf(const std::string& disk) const
{
    return kodmpadm({"getdmpnode", "nodename=" + disk});
}

Result SimulatedTools::pathsOf(const std::string& node) const
{
    return kodmpadm({"getsubpaths", "dmpnodename=" + node});
}

Result SimulatedTools::limited(const std::vector<std::string>& call) const
{
    std::vector<std::string> command{"/usr/bin/timeout", "0.2"};
    command.insert(command.end(), call.begin(), call.end());
    return start(command).finish();
}

Setting SimulatedTools::environment() const
{
    Setting setting;
    setting.environment = {"KOVM_SIMULATOR_STATE=" + statePath()};
    return setting;
}

testing::Matcher<Result> Succeeds(const std::string& output)
{
    return AllOf(Field("status", &Result::status, 0), Field("output", &Result::output, output),
                 Field("errors", &Result::errors, ""));
}

testing::Matcher<Result> Fails(int status, const std::string& reason)
{
    return AllOf(Field("status", &Result::status, status), Field("output", &Result::output, ""),
                 Field("errors", &Result::errors, HasSubstr(reason)));
}

testing::Matcher<Result> DiesBy(int signal)
{
    return Field("status", &Result::status, -signal);
}

void PrintTo(const Result& ended, std::ostream* stream)
{
    *stream << "status " << ended.status << ", output \"" << ended.output << "\", errors \""
            << ended.errors << '"';
}

#include "tests/command/active/active_command.h"

#include <sstream>

namespace {

std::string outlineOfCommand(const Json& step)
{
    std::istringstream words(step["command"].get<std::string>());
    std::string word;
    words >> word >> word;
    return word + " " + step["result"].dump();
}

std::string callOf(const std::string& command)
{
    std::istringstream words(command.substr(command.rfind('/') + 1));
    std::string call;
    words >> call;
    for (std::string word; words >> word;)
        call += " \"" + word + "\"";
    return call;
}

} // namespace

std::vector<std::string> ActiveCommand::active(const std::vector<std::string>& arguments,
                                               const std::string& sleepMilliseconds) const
{
    std::vector<std::string> command{"env",
                                     "--default-signal=INT,TERM,HUP,QUIT,PIPE",
                                     "LD_PRELOAD=" QUICK_SLEEP,
                                     "ASAN_OPTIONS=verify_asan_link_order=0",
                                     "SLEEP_LOG=" + sleepLog().string(),
                                     "SLEEP_MILLISECONDS=" + sleepMilliseconds,
                                     DMPCLAIM_COMMAND,
                                     "active"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return inNamespace(command);
}

Result ActiveCommand::run(const std::vector<std::string>& arguments) const
{
    return Process(active(arguments)).finish();
}

Json ActiveCommand::answer(std::vector<std::string> arguments) const
{
    arguments.insert(arguments.begin(), "-J");
    const Result ended = run(arguments);
    EXPECT_EQ(ended.errors, "");
    const Json document = Json::parse(ended.output);
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["paths"].size(), 1U);
    return document["paths"][0];
}

std::vector<std::string> ActiveCommand::sleeps() const
{
    return linesOf(sleepLog());
}

std::vector<std::string> ActiveCommand::calls() const
{
    std::vector<std::string> calls = log();
    for (std::string& call : calls)
        call.erase(0, call.find("] ") + 2);
    return calls;
}

std::vector<std::string> ActiveCommand::outline(const Json& timeline)
{
    std::vector<std::string> steps;
    for (const Json& step : timeline)
        steps.push_back(step.contains("wait") ? "wait" : outlineOfCommand(step));
    return steps;
}

std::vector<std::string> ActiveCommand::callsIn(const Json& timeline)
{
    std::vector<std::string> calls;
    for (const Json& step : timeline) {
        if (step.contains("command"))
            calls.push_back(callOf(step["command"]));
    }
    return calls;
}

std::filesystem::path ActiveCommand::sleepLog() const
{
    return folder() / "sleeps";
}

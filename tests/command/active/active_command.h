#ifndef TESTS_COMMAND_ACTIVE_ACTIVE_COMMAND_H
#define TESTS_COMMAND_ACTIVE_ACTIVE_COMMAND_H

#include <string>
#include <vector>

#include "tests/command/namespaced_tools.h"

/// `dmpclaim active` as a process, with the simulated tools in /usr/sbin and a `sleep` that returns
/// at once.
class ActiveCommand : public NamespacedTools {
protected:
    /// The command line of `dmpclaim active` with these arguments. Its signals are not ignored,
    /// also when the tests were started with signals ignored.
    std::vector<std::string> active(const std::vector<std::string>& arguments,
                                    const std::string& sleepMilliseconds = "0") const
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

    Result run(const std::vector<std::string>& arguments) const
    {
        return Process(active(arguments)).finish();
    }

    /// What the JSON says of the only path.
    Json answer(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "-J");
        const Result ended = run(arguments);
        EXPECT_EQ(ended.errors, "");
        const Json document = Json::parse(ended.output);
        EXPECT_EQ(document["schema"], 1);
        EXPECT_EQ(document["paths"].size(), 1U);
        return document["paths"][0];
    }

    /// The seconds that the library asked to sleep, in order.
    std::vector<std::string> sleeps() const { return linesOf(sleepLog()); }

    /// The calls of the tools as their log shows them, without time and process.
    std::vector<std::string> calls() const
    {
        std::vector<std::string> calls = log();
        for (std::string& call : calls)
            call.erase(0, call.find("] ") + 2);
        return calls;
    }

    /// A timeline in short: "getdmpnode 0" for a subcommand and its result, "wait".
    static std::vector<std::string> outline(const Json& timeline)
    {
        std::vector<std::string> steps;
        for (const Json& step : timeline)
            steps.push_back(step.contains("wait") ? "wait" : outlineOfCommand(step));
        return steps;
    }

    /// The calls in a timeline, as `calls` shows them.
    static std::vector<std::string> callsIn(const Json& timeline)
    {
        std::vector<std::string> calls;
        for (const Json& step : timeline) {
            if (step.contains("command"))
                calls.push_back(callOf(step["command"]));
        }
        return calls;
    }

private:
    static std::string outlineOfCommand(const Json& step)
    {
        std::istringstream words(step["command"].get<std::string>());
        std::string word;
        words >> word >> word;
        return word + " " + step["result"].dump();
    }

    static std::string callOf(const std::string& command)
    {
        std::istringstream words(command.substr(command.rfind('/') + 1));
        std::string call;
        words >> call;
        for (std::string word; words >> word;)
            call += " \"" + word + "\"";
        return call;
    }

    std::filesystem::path sleepLog() const { return folder() / "sleeps"; }
};

#endif

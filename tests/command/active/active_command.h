#ifndef TESTS_COMMAND_ACTIVE_ACTIVE_COMMAND_H
#define TESTS_COMMAND_ACTIVE_ACTIVE_COMMAND_H

#include <filesystem>
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
                                    const std::string& sleepMilliseconds = "0") const;

    Result run(const std::vector<std::string>& arguments) const;

    /// What the JSON says of the only path.
    Json answer(std::vector<std::string> arguments) const;

    /// The seconds that the library asked to sleep, in order.
    std::vector<std::string> sleeps() const;

    /// The calls of the tools as their log shows them, without time and process.
    std::vector<std::string> calls() const;

    /// A timeline in short: "getdmpnode 0" for a subcommand and its result, "wait".
    static std::vector<std::string> outline(const Json& timeline);

    /// The calls in a timeline, as `calls` shows them.
    static std::vector<std::string> callsIn(const Json& timeline);

private:
    std::filesystem::path sleepLog() const;
};

#endif

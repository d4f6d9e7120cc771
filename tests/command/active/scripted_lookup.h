#ifndef TESTS_COMMAND_ACTIVE_SCRIPTED_LOOKUP_H
#define TESTS_COMMAND_ACTIVE_SCRIPTED_LOOKUP_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "active/active_lookup.h"
#include "tests/command/answer_json.h"
#include "tests/support/scripted_tools.h"

inline constexpr char nodeQuery[] = "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc";
inline constexpr char pathQuery[] = "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17";
inline constexpr char rescan[] = "/usr/sbin/kodisk   scandisks  device=sdc";
inline const std::vector<std::string> nodeTable{"NAME STATE", "====", "arr0_17 ENABLED"};
inline const std::vector<std::string> pathTable{"NAME STATE", "====", "sdf ENABLED(A) PRIMARY"};

/// Lookups with scripted tools.
class ActiveLookupTest : public testing::Test {
protected:
    nlohmann::ordered_json lookUp(const std::string& path, bool refresh = false)
    {
        rules.refresh = refresh;
        return answerJson(command::ActiveLookup(rules, sink, stop, status).run(path),
                          command::lookupColumns());
    }

    void findAtOnce() { tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, pathTable); }

    /// The only path of the node is `row`, as the tool's table has it.
    void findAtOnce(const std::string& row)
    {
        tools.answer(nodeQuery, 0, nodeTable).answer(pathQuery, 0, {"NAME STATE", "====", row});
    }

    /// Each step of a timeline with its result: "COMMAND: 0", "wait".
    static std::vector<std::string> outline(const nlohmann::ordered_json& row)
    {
        std::vector<std::string> steps;
        for (const nlohmann::ordered_json& step : row["timeline"])
            steps.push_back(step.contains("wait") ? "wait"
                                                  : step["command"].get<std::string>() + ": " +
                                                        step["result"].dump());
        return steps;
    }

    ScriptedTools tools;
    command::LookupRules rules;
    command::StopRequest stop;
    command::LookupStatus status;
    koze_pdk_4_4::CZeTraceSinkHandle sink;
};

#endif

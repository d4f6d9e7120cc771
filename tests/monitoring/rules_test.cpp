// The alert rules and the page about monitoring, held against what doctor writes: labels, codes and
// severities.
#include <gmock/gmock.h>

#include <set>
#include <string>

#include "doctor/metrics.h"
#include "tests/support/matches.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::Contains;
using testing::IsSubsetOf;
using testing::SizeIs;

using Words = std::set<std::string>;

constexpr char rulesFile[] = MONITORING "/dmpclaim.rules.yml";
constexpr char page[] = MONITORING "/../docs/monitoring.md";

/// The metrics of a machine with a disk.
std::string metrics()
{
    command::Report report;
    report.disks = {
        {"/dev/mapper/mpatha", "device-mapper", {{"sda", command::PathState::active, true}}}};
    return command::metricsText(report, {}, 0);
}

/// The labels of a metric's samples.
Words labelsOf(const std::string& metric)
{
    Words labels;
    for (const std::string& sample : matches(metrics(), "\n" + metric + "\\{([^}]*)\\}"))
        labels.merge(matches(sample, "([a-z]+)="));
    labels.insert("instance"); // of the server
    return labels;
}

Words codes()
{
    Words names;
    for (const command::CodeFacts& facts : command::codeTable)
        names.insert(facts.name);
    return names;
}

/// Each rule's text, from its name to the next rule.
std::vector<std::string> rules()
{
    std::vector<std::string> rules;
    for (const std::string& line : linesOf(rulesFile)) {
        if (line.find("- alert: ") != std::string::npos)
            rules.emplace_back();
        if (!rules.empty())
            rules.back() += line + '\n';
    }
    return rules;
}

TEST(AlertRules, UseLabelsThatTheirMetricsHave)
{
    EXPECT_THAT(rules(), SizeIs(testing::Ge(6U)));
    for (const std::string& rule : rules()) {
        const Words used = matches(rule, "(dmpclaim_[a-z_]+)");
        ASSERT_FALSE(used.empty()) << rule;
        Words labels = matches(rule, R"(\$labels\.([a-z]+))");
        labels.merge(matches(rule, R"re(([a-z]+)!?=")re"));
        EXPECT_THAT(labels, IsSubsetOf(labelsOf(*used.begin()))) << rule;
    }
}

TEST(AlertRules, NameCodesAndSeveritiesThatThereAre)
{
    const std::string text = textOf(rulesFile);
    EXPECT_THAT(matches(text, R"re(code!?="([^"]*)")re"), IsSubsetOf(codes()));
    EXPECT_THAT(codes(), Contains("no-path"));
    EXPECT_THAT(matches(text, R"re([{,]severity="([^"]*)")re"),
                IsSubsetOf(Words{"note", "warning", "error"}));
}

TEST(MonitoringPage, NamesCodesThatThereAre)
{
    const Words lists = matches(textOf(page), "--only ([a-z,-]+)");
    EXPECT_FALSE(lists.empty());
    for (const std::string& list : lists)
        EXPECT_THAT(matches(list, "([a-z-]+)"), IsSubsetOf(codes()));
    EXPECT_THAT(matches(textOf(page), "`((?:tool|lookup)-[a-z-]+)`"), IsSubsetOf(codes()));
}

TEST(MonitoringPage, AsksAboutLabelsAndStatesThatThereAre)
{
    const Words states = matches(textOf(page), R"re(state=~"([^"]*)")re");
    ASSERT_THAT(states, SizeIs(1U));
    for (const std::string& state : matches(*states.begin(), "([a-z]+)"))
        EXPECT_THAT(metrics(), testing::HasSubstr("state=\"" + state + "\""));
}

} // namespace

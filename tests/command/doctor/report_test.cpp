#include "doctor/report.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/command/output/captured_output.h"

namespace {

using command::Code;
using command::PathState;
using command::Report;
using command::StopReason;
using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::ordered_json;

class ReportWriterTest : public testing::Test {
protected:
    command::Explanation nameOf(const std::string& path)
    {
        return command::explanation(m_manager, m_modules, path);
    }

    CDmpClaimManager m_manager;
    const std::vector<command::Module> m_modules = command::makeModules({});
    CapturedOutput m_output;
};

TEST_F(ReportWriterTest, ADocumentHasEveryPart)
{
    command::ReportWriter writer(m_output.stream(), m_modules);
    writer.addName(nameOf("/dev/sdb"));
    writer.addName(nameOf("/dev/sdb1"));
    Report report;
    report.disks = {{"arr0_17", "kodmp", {{"sdb", PathState::active, true}}}};
    report.maps = {{"mpatha", "mpath-1"}};
    report.commands = {{"kodmpadm", 3, {"ERROR"}}};
    report.trace = {command::Document::Record{{"level", 6}, {"text", "Entering"}}};
    writer.finish(report, {{Code::toolReady, "kodisk", "can be run"}});
    const Json document = Json::parse(m_output.text());
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["modules"][0]["module"], "native");
    ASSERT_EQ(document["names"].size(), 2U);
    EXPECT_EQ(document["names"][1]["disk"], "/dev/sdb");
    EXPECT_EQ(document["interrupted"], false);
    EXPECT_EQ(document["maps"], Json({{{"name", "mpatha"}, {"uuid", "mpath-1"}}}));
    EXPECT_EQ(document["disks"][0]["paths"][0]["state"], "active");
    EXPECT_EQ(document["commands"],
              Json({{{"command", "kodmpadm"}, {"status", 3}, {"output", {"ERROR"}}}}));
    EXPECT_EQ(document["findings"][0]["code"], "tool-ready");
    EXPECT_EQ(document["trace"], Json({{{"level", 6}, {"text", "Entering"}}}));
}

TEST_F(ReportWriterTest, ADocumentWithoutNamesHasEveryPartToo)
{
    command::ReportWriter writer(m_output.stream(), m_modules);
    Report report;
    report.end = StopReason::timeLimit;
    writer.finish(report, {});
    const Json document = Json::parse(m_output.text());
    EXPECT_EQ(document["interrupted"], true);
    for (const char* list : {"names", "maps", "disks", "commands", "findings", "trace"})
        EXPECT_EQ(document.at(list), Json::array()) << list;
}

TEST_F(ReportWriterTest, NamesGoOutAsTheyCome)
{
    command::ReportWriter writer(m_output.stream(), m_modules);
    for (int number = 0; number < 1000; ++number)
        writer.addName(nameOf("/dev/mapper/mpath" + std::to_string(number)));
    EXPECT_THAT(m_output.written(), StartsWith("{\n  \"schema\": 1,\n"));
    EXPECT_THAT(m_output.written(), HasSubstr("\"/dev/mapper/mpath900\""));
}

TEST_F(ReportWriterTest, ADocumentThatIsCutShortIsWholeAndSaysSo)
{
    command::ReportWriter writer(m_output.stream(), m_modules);
    writer.addName(nameOf("/dev/sdb"));
    writer.addName(nameOf("/dev/sdc"));
    m_output.stream().end(std::chrono::milliseconds(100));
    const Json document = Json::parse(m_output.written());
    EXPECT_EQ(document["names"].size(), 2U);
    EXPECT_EQ(document["interrupted"], true);
    for (const char* list : {"maps", "disks", "commands", "findings", "trace"})
        EXPECT_EQ(document.at(list), Json::array()) << list;
}

TEST_F(ReportWriterTest, BehindAWholeDocumentNothingIsAdded)
{
    command::ReportWriter writer(m_output.stream(), m_modules);
    writer.addName(nameOf("/dev/sdb"));
    writer.finish({}, {});
    m_output.stream().end(std::chrono::milliseconds(100));
    EXPECT_EQ(Json::parse(m_output.written())["interrupted"], false);
}

} // namespace

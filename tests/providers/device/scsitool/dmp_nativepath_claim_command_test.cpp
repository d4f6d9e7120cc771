// Running one command of the volume manager, and the installation check.
#include <gmock/gmock.h>

#include <new>

#include "pdk/include/czeexecpipe.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"
#include "tests/support/trace_outline.h"

using koze_pdk_4_4::EZeExecPipe;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char file[] = "dmp_nativepath_claim.cpp";

class KoDmpCommand : public testing::Test {
protected:
    KoDmpCommand() { m_support.registerTraceLog(m_log.handle()); }

    int execute(const char* command) { return m_support.executeCommand(command, m_output); }

    std::vector<std::string> trace() { return outline(m_log.takeLines(), file); }

    ScriptedTools m_tools;
    RecordingLog m_log;
    CKoDMPSupport m_support;
    std::vector<std::string> m_output;
};

TEST_F(KoDmpCommand, TheToolIsLookedForWithoutTheSpacesOfItsName)
{
    EXPECT_TRUE(m_support.isKoDMPInstalled());
    EXPECT_THAT(m_tools.events, ElementsAre("access /usr/sbin/kodmpadm 1"));
}

TEST_F(KoDmpCommand, AToolThatCannotBeExecutedIsNotInstalled)
{
    m_tools.installed = false;
    EXPECT_FALSE(m_support.isKoDMPInstalled());
    EXPECT_THAT(m_tools.events, ElementsAre("access /usr/sbin/kodmpadm 1"));
}

TEST_F(KoDmpCommand, TheInstallationCheckAsksTheFileSystemEachTime)
{
    EXPECT_TRUE(m_support.isKoDMPInstalled());
    m_tools.installed = false;
    EXPECT_FALSE(m_support.isKoDMPInstalled());
}

TEST_F(KoDmpCommand, TheInstallationCheckWritesItsTracerLinesOnly)
{
    m_support.isKoDMPInstalled();
    EXPECT_THAT(trace(), ElementsAre("> isKoDMPInstalled", "> isCommandAvailable",
                                     "< isCommandAvailable", "< isKoDMPInstalled"));
}

TEST_F(KoDmpCommand, NoSeparatorIsInsertedBetweenDirectoryAndCommand)
{
    m_support.isCommandAvailable("/usr/sbin", "kodmpadm");
    EXPECT_THAT(m_tools.events, ElementsAre("access /usr/sbinkodmpadm 1"));
}

TEST_F(KoDmpCommand, WhiteSpaceAroundThePathIsIgnoredAndInsideItIsKept)
{
    m_support.isCommandAvailable(" \t\r\n/opt/a b", "\tc\n \r\t");
    EXPECT_THAT(m_tools.events, ElementsAre("access /opt/a b\tc 1"));
}

TEST_F(KoDmpCommand, TheRunnerGetsTheCommandLineUnchangedAndTheFixedSettings)
{
    m_tools.answer("/usr/sbin/x   a  b ", 0);
    EXPECT_EQ(execute("/usr/sbin/x   a  b "), 0);
    EXPECT_EQ(m_tools.runnerArgument, 1);
    EXPECT_THAT(m_tools.otherArguments, ElementsAre("", "600", "", "", ""));
}

TEST_F(KoDmpCommand, TheRunnerTracesToTheSameLog)
{
    m_tools.answer("/x", 0);
    execute("/x");
    EXPECT_EQ(m_tools.runnerLog, m_log.handle().get());
}

TEST_F(KoDmpCommand, TheRunnerIsGoneWhenTheCallReturns)
{
    m_tools.answer("/x", 0).answer({"/y", 0, {}, [] { throw EZeExecPipe("gone"); }});
    execute("/x");
    execute("/y");
    EXPECT_EQ(m_tools.runners, 2);
    EXPECT_EQ(m_tools.liveRunners, 0);
}

TEST_F(KoDmpCommand, ASuccessGivesTheLinesInOrderAndTracesThemJoined)
{
    m_tools.answer("/x", 0, {"a", "b\n", ""});
    EXPECT_EQ(execute("/x"), 0);
    EXPECT_THAT(m_output, ElementsAre("a", "b\n", ""));
    EXPECT_THAT(trace(),
                ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                            "6 ExecuteCommand passed with output 'ab\n'", "< executeCommand"));
}

TEST_F(KoDmpCommand, ASuccessWithoutOutputWritesNoLineAboutIt)
{
    m_tools.answer("/x", 0);
    EXPECT_EQ(execute("/x"), 0);
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "< executeCommand"));
}

TEST_F(KoDmpCommand, ASuccessWithOneEmptyLineIsTraced)
{
    m_tools.answer("/x", 0, {""});
    execute("/x");
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "6 ExecuteCommand passed with output ''", "< executeCommand"));
}

TEST_F(KoDmpCommand, AFailureGivesTheRunnersNumberAndItsLines)
{
    m_tools.answer("/x", 127, {"a", "b"});
    EXPECT_EQ(execute("/x"), 127);
    EXPECT_THAT(m_output, ElementsAre("a", "b"));
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "2 Warning - failed with message='ab' and error no '127'.",
                                     "< executeCommand"));
}

TEST_F(KoDmpCommand, ANegativeNumberOfTheRunnerIsAFailureToo)
{
    m_tools.answer("/x", -7);
    EXPECT_EQ(execute("/x"), -7);
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "2 Warning - failed with message='' and error no '-7'.",
                                     "< executeCommand"));
}

TEST_F(KoDmpCommand, ACommandThatCannotBeRunGivesOneAndWhatWasCollected)
{
    m_tools.answer({"/x", 0, {"a"}, [] { throw EZeExecPipe("missing"); }});
    EXPECT_EQ(execute("/x"), 1);
    EXPECT_THAT(m_output, ElementsAre("a"));
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "1 ExecuteCommand - exception thrown in command execution.",
                                     "< executeCommand"));
}

TEST_F(KoDmpCommand, AnyOtherExceptionPassesThrough)
{
    m_tools.answer({"/x", 0, {"a"}, [] { throw std::bad_alloc(); }});
    EXPECT_THROW(execute("/x"), std::bad_alloc);
    EXPECT_THAT(m_output, ElementsAre("a"));
    EXPECT_EQ(m_tools.liveRunners, 0);
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x",
                                     "< executeCommand"));
}

TEST_F(KoDmpCommand, OldOutputIsGoneWhateverHappens)
{
    m_tools.answer("/x", 0)
        .answer("/x", 5)
        .answer({"/x", 0, {}, [] { throw EZeExecPipe("missing"); }})
        .answer({"/x", 0, {}, [] { throw std::bad_alloc(); }});
    for (int run = 0; run < 3; ++run) {
        m_output = {"old"};
        execute("/x");
        EXPECT_THAT(m_output, IsEmpty());
    }
    m_output = {"old"};
    EXPECT_THROW(execute("/x"), std::bad_alloc);
    EXPECT_THAT(m_output, IsEmpty());
}

TEST_F(KoDmpCommand, ResultsDoNotDependOnTracing)
{
    CKoDMPSupport silent;
    m_tools.answer("/x", 0, {"a"}).answer("/x", 3, {"b"}).answer({"/x", 0, {}, [] {
                                                                      throw EZeExecPipe("missing");
                                                                  }});
    EXPECT_EQ(silent.executeCommand("/x", m_output), 0);
    EXPECT_THAT(m_output, ElementsAre("a"));
    EXPECT_EQ(silent.executeCommand("/x", m_output), 3);
    EXPECT_THAT(m_output, ElementsAre("b"));
    EXPECT_EQ(silent.executeCommand("/x", m_output), 1);
    EXPECT_EQ(m_tools.runnerLog, nullptr);
}

TEST_F(KoDmpCommand, AFormatInACommandOrItsOutputIsTextOnly)
{
    m_tools.answer("/x %s%n", 4, {"%s%n"});
    EXPECT_EQ(execute("/x %s%n"), 4);
    EXPECT_THAT(trace(), ElementsAre("> executeCommand", "3 ExecuteCommand command: /x %s%n",
                                     "2 Warning - failed with message='%s%n' and error no '4'.",
                                     "< executeCommand"));
}

} // namespace

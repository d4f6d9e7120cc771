#include "active/trace_event.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using command::traceEvent;
using Kind = command::TraceEvent::Kind;

struct Case {
    int level;
    std::string text;
    Kind kind;
};

void PrintTo(const Case& line, std::ostream* stream)
{
    *stream << line.level << ' ' << line.text;
}

const Case events[] = {
    {3, "ExecuteCommand command: /usr/sbin/kodisk   scandisks ", Kind::toolStarts},
    {3, "ExecuteCommand command: ", Kind::toolStarts},
    {2, "Warning - failed with message='' and error no '3'.", Kind::toolFails},
    {1, "ExecuteCommand - exception thrown in command execution.", Kind::toolCannotRun},
    {6, "Exiting Function executeCommand [212, dmp_nativepath_claim.cpp]", Kind::toolEnds},
    {6, "ExecuteCommand passed with output 'ExecuteCommand command: x'", Kind::toolAnswers},
    {2, "Warning - no output of command.", Kind::noOutput},
    {2, "Warning - no valid output of command.", Kind::headerNotFirst},
    {6, "Got active path [/dev/sdb].", Kind::activePath},
    {6, "Obtaining dmp nodes failed. need to retry.", Kind::waitStarts},
};

const Case others[] = {
    {2, "ExecuteCommand command: /usr/sbin/kodisk", Kind::other},
    {3, "ExecuteCommand command", Kind::other},
    {3, "Warning - failed with message='' and error no '3'.", Kind::other},
    {2, "ExecuteCommand - exception thrown in command execution.", Kind::other},
    {3, "Exiting Function executeCommand [212, dmp_nativepath_claim.cpp]", Kind::other},
    {6, "Entering Function executeCommand [212, dmp_nativepath_claim.cpp]", Kind::other},
    {6, "Exiting Function executeCommands [212, dmp_nativepath_claim.cpp]", Kind::other},
    {3, "ExecuteCommand passed with output 'x'", Kind::other},
    {6, "ExecuteCommand passed", Kind::other},
    {2, "Command [ExecuteCommand command: x] warns: Warning - failed with message='", Kind::other},
    {2, "Warning - obtaining dmp nodes failed even after multiple retries.", Kind::other},
    {6, "Warning - no output of command.", Kind::other},
    {2, "Warning - no output of command. ", Kind::other},
    {2, "Warning - no valid output", Kind::other},
    {2, "Got active path [/dev/sdb].", Kind::other},
    {1, "Exiting", Kind::other},
    {4, "ExecuteCommand command: x", Kind::other},
    {2, "Obtaining dmp nodes failed. need to retry.", Kind::other},
    {6, "Obtaining dmp nodes failed. need to retry. ", Kind::other},
    {6, "", Kind::other},
};

TEST(TraceEvent, LinesAboutToolsAndWaitsAreKnown)
{
    for (const Case& line : events)
        EXPECT_EQ(traceEvent(line.level, line.text).kind, line.kind)
            << testing::PrintToString(line);
}

TEST(TraceEvent, OtherLinesTellNothing)
{
    for (const Case& line : others)
        EXPECT_EQ(traceEvent(line.level, line.text).kind, line.kind)
            << testing::PrintToString(line);
}

TEST(TraceEvent, AStartNamesTheCommandUnaltered)
{
    EXPECT_EQ(traceEvent(3, "ExecuteCommand command: /x   y  z=\n\t").command, "/x   y  z=\n\t");
}

TEST(TraceEvent, AFailureTellsTheRunnersNumberWhateverTheMessageHolds)
{
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='a' and error no '127'.").result, 127);
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='a' and error no '-1'.").result, -1);
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='' and error no '0'.' and error no "
                            "'1101'.")
                  .result,
              1101);
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='' and error no 'x'.").result,
              std::nullopt);
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='cut off").result, std::nullopt);
}

TEST(TraceEvent, WhatToolsPrintedIsAPartOfTheLine)
{
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='a' b' and error no '3'.").output,
              "a' b");
    EXPECT_EQ(traceEvent(2, "Warning - failed with message='cut off").output, "");
    EXPECT_EQ(traceEvent(6, "ExecuteCommand passed with output 'NAME STATE'").output,
              "NAME STATE'");
}

} // namespace

#ifndef TESTS_SUPPORT_TRACE_OUTLINE_H
#define TESTS_SUPPORT_TRACE_OUTLINE_H

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "recording_log.h"

/// Shows trace lines in a short form, in order: "> claim" and "< claim" for the entering and the
/// exiting line of an operation in `file`, whatever its line number; every other line as its level
/// and text.
inline std::vector<std::string> outline(const std::vector<Line>& lines, const std::string& file)
{
    const std::regex bracket("(Entering|Exiting) Function (\\S+) \\[[1-9][0-9]*, " + file + "\\]");
    std::vector<std::string> shown;
    for (const Line& line : lines) {
        std::smatch match;
        if (line.level == 6 && std::regex_match(line.text, match, bracket))
            shown.push_back((match[1] == "Entering" ? "> " : "< ") + match[2].str());
        else
            shown.push_back(std::to_string(line.level) + " " + line.text);
    }
    return shown;
}

/// What an outline shows of the outermost operations: their lines, and the entering lines of the
/// operations that they call.
inline std::vector<std::string> outermost(const std::vector<std::string>& lines)
{
    std::vector<std::string> shown;
    int depth = 0;
    for (const std::string& line : lines) {
        const bool enters = line.rfind("> ", 0) == 0;
        const bool exits = line.rfind("< ", 0) == 0;
        depth -= exits ? 1 : 0;
        if (depth <= 1 && !(exits && depth == 1))
            shown.push_back(line);
        depth += enters ? 1 : 0;
    }
    EXPECT_EQ(depth, 0);
    return shown;
}

#endif

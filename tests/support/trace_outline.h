#ifndef TESTS_SUPPORT_TRACE_OUTLINE_H
#define TESTS_SUPPORT_TRACE_OUTLINE_H

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

#endif

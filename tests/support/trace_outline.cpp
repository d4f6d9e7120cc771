#include "tests/support/trace_outline.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// "> claim" for "Entering Function claim [12, FILE]", "< claim" for the exiting line. Empty for
/// other lines.
std::string bracketIn(const std::string& text, const std::string& file)
{
    std::istringstream words(text);
    std::string verb;
    std::string noun;
    std::string function;
    char bracket = 0;
    unsigned int number = 0;
    words >> verb >> noun >> function >> bracket >> number;
    const std::string rest =
        " Function " + function + " [" + std::to_string(number) + ", " + file + "]";
    if (number == 0)
        return "";
    return text == "Entering" + rest  ? "> " + function
           : text == "Exiting" + rest ? "< " + function
                                      : "";
}

} // namespace

std::vector<std::string> outline(const std::vector<Line>& lines, const std::string& file)
{
    std::vector<std::string> shown;
    for (const Line& line : lines) {
        const std::string bracket = line.level == 6 ? bracketIn(line.text, file) : "";
        shown.push_back(bracket.empty() ? std::to_string(line.level) + " " + line.text : bracket);
    }
    return shown;
}

std::vector<std::string> outermost(const std::vector<std::string>& lines)
{
    std::vector<std::string> shown;
    int depth = 0;
    for (const std::string& line : lines) {
        const bool enters = line.rfind("> ", 0) == 0;
        const bool exits = line.rfind("< ", 0) == 0;
        depth -= exits ? 1 : 0;
        if (depth <= 1 && (!exits || depth != 1))
            shown.push_back(line);
        depth += enters ? 1 : 0;
    }
    EXPECT_EQ(depth, 0);
    return shown;
}

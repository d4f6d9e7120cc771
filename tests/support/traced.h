#ifndef TESTS_SUPPORT_TRACED_H
#define TESTS_SUPPORT_TRACED_H

#include <string>
#include <vector>

#include "tests/support/recording_log.h"

/// Lines that are expected in this order.
using TraceLines = std::vector<testing::Matcher<const Line&>>;

void append(TraceLines& lines, const Line& line);
void append(TraceLines& lines, const std::vector<Line>& more);
void append(TraceLines& lines, const TraceLines& more);

/// The lines of an operation: `inside`, single lines or those of other operations, between the
/// entering and the exiting line of `function` in `file`.
template <class... Inside>
TraceLines Traced(const std::string& function, const std::string& file, const Inside&... inside)
{
    TraceLines lines{Entering(function, file)};
    (append(lines, inside), ...);
    lines.emplace_back(Exiting(function, file));
    return lines;
}

#endif

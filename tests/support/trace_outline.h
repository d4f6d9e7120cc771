#ifndef TESTS_SUPPORT_TRACE_OUTLINE_H
#define TESTS_SUPPORT_TRACE_OUTLINE_H

#include <string>
#include <vector>

#include "tests/support/recording_log.h"

/// Shows trace lines in a short form, in order: "> claim" and "< claim" for the entering and the
/// exiting line of an operation in `file`, whatever its line number; every other line as its level
/// and text.
std::vector<std::string> outline(const std::vector<Line>& lines, const std::string& file);

/// What an outline shows of the outermost operations: their lines, and the entering lines of the
/// operations that they call.
std::vector<std::string> outermost(const std::vector<std::string>& lines);

#endif

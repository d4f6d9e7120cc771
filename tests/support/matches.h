#ifndef TESTS_SUPPORT_MATCHES_H
#define TESTS_SUPPORT_MATCHES_H

#include <set>
#include <string>

/// What the pattern matches in the text: its last group, or all of it when it has no group. The
/// pattern is a regular expression as std::regex takes it.
std::set<std::string> matches(const std::string& text, const std::string& pattern);

#endif

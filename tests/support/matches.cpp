#include "tests/support/matches.h"

#include <regex>

std::set<std::string> matches(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.insert((*match)[match->size() - 1]);
    return found;
}

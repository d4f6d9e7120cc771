#include "cli/column_list.h"

#include <algorithm>
#include <string>

#include <strings.h>

#include "cli/usage_error.h"

namespace command {

namespace {

bool isNamed(const Heading& heading, std::string_view name)
{
    return heading.name.size() == name.size() &&
           strncasecmp(heading.name.data(), name.data(), name.size()) == 0;
}

const Heading& findColumn(std::string_view name, const std::vector<Heading>& all)
{
    if (name.empty())
        throw UsageError("the list of columns lacks a heading; there are " + namesOf(all));
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Heading& heading) { return isNamed(heading, name); });
    if (found == all.end())
        throw UsageError("unknown column '" + std::string(name) + "'; there are " + namesOf(all));
    return *found;
}

bool holds(const std::vector<Heading>& headings, const Heading& wanted)
{
    return std::any_of(headings.begin(), headings.end(),
                       [&](const Heading& heading) { return heading.name == wanted.name; });
}

} // namespace

std::vector<Heading> chosenColumns(std::string_view list, const std::vector<Heading>& usual,
                                   const std::vector<Heading>& all)
{
    if (list.empty())
        throw UsageError("the list of columns is empty; there are " + namesOf(all));
    std::vector<Heading> chosen;
    if (!list.empty() && list.front() == '+') {
        chosen = usual;
        list.remove_prefix(1);
    }
    for (;;) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const Heading& heading = findColumn(list.substr(0, comma), all);
        if (!holds(chosen, heading))
            chosen.push_back(heading);
        if (comma == list.size())
            return chosen;
        list.remove_prefix(comma + 1);
    }
}

} // namespace command

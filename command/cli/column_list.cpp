#include "cli/column_list.h"

#include <algorithm>
#include <string>

#include <strings.h>

#include "cli/usage_error.h"
#include "text/word_list.h"

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
    if (list.front() == '+') {
        chosen = usual;
        list.remove_prefix(1);
    }
    for (const std::string& name : splitAtCommas(list)) {
        const Heading& heading = findColumn(name, all);
        if (!holds(chosen, heading))
            chosen.push_back(heading);
    }
    return chosen;
}

} // namespace command

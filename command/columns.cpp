#include "columns.h"

#include <algorithm>

#include <strings.h>

#include "usage_error.h"

namespace {

using command::Column;

constexpr Column name{"NAME", "name"};
constexpr Column owner{"OWNER", "owner"};
constexpr Column claim{"CLAIM", "claim", Column::Kind::number};
constexpr Column partition{"PARTITION", "partition"};
constexpr Column disk{"DISK", "disk"};
constexpr Column partnum{"PARTNUM", "partnum", Column::Kind::number};
constexpr Column path{"PATH", "path"};
constexpr Column prefix{"PREFIX", "prefix"};
constexpr Column active{"ACTIVE", "active"};
constexpr Column changed{"CHANGED", "changed"};
constexpr Column took{"TOOK", "took", Column::Kind::number};
constexpr Column timeline{"TIMELINE", "timeline"};
constexpr Column warning{"WARNING", "warning"};
constexpr Column commandLine{"COMMAND", "command", Column::Kind::command};
constexpr Column when{"WHEN", "when"};

const Column& findColumn(const std::string& heading, const std::vector<Column>& columns)
{
    if (heading.empty())
        throw command::UsageError("the list of columns lacks a heading; there are " +
                                  command::headings(columns));
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& column) {
        return strcasecmp(column.heading, heading.c_str()) == 0;
    });
    if (found == columns.end())
        throw command::UsageError("unknown column '" + heading + "'; there are " +
                                  command::headings(columns));
    return *found;
}

} // namespace

namespace command {

const ColumnSet& deviceColumns()
{
    static const std::vector<Column> all{name, owner, claim, partition, disk, partnum};
    static const ColumnSet set{all, all};
    return set;
}

const ColumnSet& activeColumns()
{
    static const std::vector<Column> usual{name, owner, active, changed, took};
    static const ColumnSet set{{name, owner, active, changed, took, timeline, warning}, usual};
    return set;
}

const ColumnSet& commandColumns()
{
    static const std::vector<Column> all{name, owner, commandLine, when};
    static const ColumnSet set{all, all};
    return set;
}

const ColumnSet& diskColumns()
{
    static const ColumnSet set{deviceColumns().all, {disk}};
    return set;
}

const ColumnSet& partitionColumns()
{
    static const ColumnSet set{{path, disk, partnum, owner, claim}, {path}};
    return set;
}

const ColumnSet& prefixColumns()
{
    static const ColumnSet set{{prefix, owner}, {prefix}};
    return set;
}

std::vector<Column> chosenColumns(std::string_view list, const std::vector<Column>& usual,
                                  const std::vector<Column>& all)
{
    std::vector<Column> chosen;
    if (!list.empty() && list.front() == '+') {
        chosen = usual;
        list.remove_prefix(1);
    }
    for (;;) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const Column& column = findColumn(std::string(list.substr(0, comma)), all);
        if (std::find(chosen.begin(), chosen.end(), column) == chosen.end())
            chosen.push_back(column);
        if (comma == list.size())
            return chosen;
        list.remove_prefix(comma + 1);
    }
}

std::string headings(const std::vector<Column>& columns)
{
    std::string joined;
    for (const Column& column : columns)
        joined += (joined.empty() ? "" : ", ") + std::string(column.heading);
    return joined;
}

} // namespace command

#ifndef COLUMNS_H
#define COLUMNS_H

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// A column of a table. Its key in a row is the heading in lower case.
struct Column {
    enum class Kind { text, number, command };

    const char* heading;
    const char* key;
    Kind kind = Kind::text;

    bool operator==(const Column& other) const { return std::string_view(key) == other.key; }
};

/// The columns of one kind of row, and those of them that are shown unless the user chooses.
struct ColumnSet {
    std::vector<Column> all;
    std::vector<Column> usual;
};

const ColumnSet& deviceColumns();    // usual: all
const ColumnSet& activeColumns();    // usual: all but the timeline
const ColumnSet& commandColumns();   // usual: all
const ColumnSet& diskColumns();      // of the same rows, usual: the disk
const ColumnSet& partitionColumns(); // usual: the partition's path
const ColumnSet& prefixColumns();    // usual: the prefix

/// The columns that the user chooses, each once.
///
///     list = [ "+" ] heading { "," heading }       +PARTNUM,owner
///
/// Upper and lower case are the same. With '+' the columns come behind the `usual` ones. Throws
/// UsageError when a heading is unknown or missing.
std::vector<Column> chosenColumns(std::string_view list, const std::vector<Column>& usual,
                                  const std::vector<Column>& all);

/// The headings, joined by ", ".
std::string headings(const std::vector<Column>& columns);

} // namespace command

#endif

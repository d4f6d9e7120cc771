#ifndef KOVM_TABLES_H
#define KOVM_TABLES_H

#include <cstddef>
#include <string>
#include <vector>

namespace kovm {

// Reads the tables that the volume manager's administration tool prints:
//
//     table  = header rule { row }          NAME    STATE         TYPE       CTLR
//     header = a line that holds "NAME"     ======================================
//     rule   = a line that is not read      sdc     ENABLED(A)    PRIMARY    c2
//     row    = [ name [ state [ type { column } ] ] ]
//
// Columns are separated by runs of blanks, tabs and line ends. A row without a name is skipped.

using Lines = std::vector<std::string>;

/// The lines without separators, as the trace shows an output.
std::string joined(const Lines& lines);

/// The number of the first row: header and rule come before it.
inline constexpr std::size_t firstRow = 2;

/// Why an output is no table.
enum class Fault {
    none,
    noOutput, // fewer lines than header and rule
    noHeader,
    headerNotFirst
};

Fault faultOf(const Lines& lines);

/// The fault in words, such as "no header".
const char* textOf(Fault fault);

/// A row; columns that are missing are empty.
struct Row {
    std::string name;
    std::string state;
    std::string type;

    /// Whether the path or node can be used.
    bool isEnabled() const { return state.find("ENABLED") != std::string::npos; }

    /// Whether the path carries the I/O.
    bool isActive() const { return state.find("ENABLED(A)") != std::string::npos; }
};

/// Reads the rows of a table in order. REQUIRES: the table has no fault.
class RowReader {
public:
    /// `lines` outlive the reader.
    explicit RowReader(const Lines& lines) : m_lines(lines) {}

    /// Stores the next row that has a name. Returns false after the last one.
    bool next(Row& row);

private:
    const Lines& m_lines;
    std::size_t m_number = firstRow;
};

/// The first row, whose name is the node; an empty name when there is none.
Row firstNode(const Lines& lines);

/// The path to use: the first that is enabled and active, else the first that is enabled, else the
/// first primary one, whatever its state. An empty name when there is none.
Row bestPath(const Lines& lines);

} // namespace kovm

#endif

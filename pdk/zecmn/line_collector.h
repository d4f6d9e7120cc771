#ifndef ZECMN_LINE_COLLECTOR_H
#define ZECMN_LINE_COLLECTOR_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace koze_pdk_4_4::runner {

/// The memory that the lines of one run may still take. Both streams of the run share it.
struct Budget {
    std::size_t bytesLeft;
    std::size_t longestLine;
    bool exceeded = false;
};

/// Cuts a stream into lines:
///
///     stream = { line ( "\n" | "\r\n" ) } [ line ]        "sdb\r\nsdc" is "sdb", "sdc"
///
/// Drops everything once the budget is exceeded.
class LineCollector {
public:
    /// Appends to `lines`, which outlives the collector, as does `budget`.
    LineCollector(std::vector<std::string>& lines, Budget& budget)
        : m_lines(lines), m_budget(budget)
    {}

    /// Takes the next piece of the stream; a piece may begin and end anywhere in a line.
    void add(std::string_view bytes);

    /// Ends the stream: a line without a line end is a line too.
    void finish();

private:
    bool hold(std::string_view piece);
    void store(std::string_view line);

    std::vector<std::string>& m_lines;
    Budget& m_budget;
    std::string m_held;
};

/// The number of bytes that a line takes from a budget.
std::size_t cost(std::string_view line);

/// Keeps the first `first` lines and those after them that fit into `bytes` bytes. Drops the rest
/// and frees its memory.
void keepBeginning(std::vector<std::string>& lines, std::size_t first, std::size_t bytes);

} // namespace koze_pdk_4_4::runner

#endif

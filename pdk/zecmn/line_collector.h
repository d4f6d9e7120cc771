#ifndef LINE_COLLECTOR_H
#define LINE_COLLECTOR_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace koze_pdk_4_4::runner {

/// The memory that the lines of one run may still take. Its streams share it.
struct Budget {
    std::size_t bytesLeft;
    std::size_t longestLine;
    bool exceeded = false;
};

/// Cuts a stream into lines:
///
///     stream = { line ( "\n" | "\r\n" ) } [ line ]        "sdb\r\nsdc" is "sdb", "sdc"
///
/// Past the budget it drops everything.
class LineCollector {
public:
    /// Appends to `lines`, which outlives the collector, as does `budget`.
    LineCollector(std::vector<std::string>& lines, Budget& budget)
        : m_lines(lines), m_budget(budget)
    {}

    /// Takes the next piece of the stream, cut anywhere.
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

/// What a line counts against a budget.
std::size_t cost(std::string_view line);

/// Drops the lines from the one behind `first` on that do not fit into `bytes` bytes, and gives
/// their memory back.
void keepBeginning(std::vector<std::string>& lines, std::size_t first, std::size_t bytes);

} // namespace koze_pdk_4_4::runner

#endif

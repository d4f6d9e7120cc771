#include "doctor/tool_tables.h"

#include <algorithm>

#include "pdk/include/czestringtool.h"

using koze_pdk_4_4::CZeStringTool;

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t firstRow = 2;

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

const char* faultOf(const Lines& lines)
{
    if (lines.size() < firstRow)
        return "no table";
    const auto header = std::find_if(
        lines.begin(), lines.end(), [](const std::string& line) { return contains(line, "NAME"); });
    if (header == lines.end())
        return "no header";
    return header == lines.begin() ? nullptr : "a line before the header";
}

struct TableRow {
    std::string name;
    std::string state;
    std::string type;
};

/// Those that have a name; none in an answer with a fault.
std::vector<TableRow> rowsOf(const Lines& lines)
{
    std::vector<TableRow> rows;
    if (faultOf(lines) != nullptr)
        return rows;
    for (std::size_t number = firstRow; number < lines.size(); ++number) {
        Lines columns = CZeStringTool::tokenize(lines[number], " \n\t");
        columns.resize(3);
        if (!columns[0].empty())
            rows.push_back({columns[0], columns[1], columns[2]});
    }
    return rows;
}

/// How good a path is; the smallest is the best.
enum Rank { active, enabled, primary, unusable };

Rank rankOf(const TableRow& row)
{
    if (contains(row.state, "ENABLED(A)"))
        return active;
    if (contains(row.state, "ENABLED"))
        return enabled;
    return contains(row.type, "PRIMARY") ? primary : unusable;
}

} // namespace

namespace command {

TableReading readNode(const Lines& lines)
{
    const std::vector<TableRow> rows = rowsOf(lines);
    return {faultOf(lines), rows.empty() ? "" : rows.front().name, false};
}

TableReading readPath(const Lines& lines)
{
    const std::vector<TableRow> rows = rowsOf(lines);
    const auto best =
        std::min_element(rows.begin(), rows.end(), [](const TableRow& a, const TableRow& b) {
            return rankOf(a) < rankOf(b);
        });
    if (best == rows.end() || rankOf(*best) == unusable)
        return {faultOf(lines), "", false};
    return {nullptr, best->name, rankOf(*best) != primary};
}

} // namespace command

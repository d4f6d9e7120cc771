#include "kovm/tables.h"

#include <utility>

#include "pdk/include/czestringtool.h"

using koze_pdk_4_4::CZeStringTool;

namespace kovm {

std::string joined(const Lines& lines)
{
    std::size_t size = 0;
    for (const std::string& line : lines)
        size += line.size();
    std::string text;
    text.reserve(size);
    for (const std::string& line : lines)
        text += line;
    return text;
}

Fault faultOf(const Lines& lines)
{
    constexpr auto notFound = static_cast<unsigned long>(-1);
    if (lines.size() < firstRow)
        return Fault::noOutput;
    unsigned long header = 0;
    if (CZeStringTool::find(lines, "NAME", header, false) == notFound)
        return Fault::noHeader;
    return header == 0 ? Fault::none : Fault::headerNotFirst;
}

const char* textOf(Fault fault)
{
    switch (fault) {
    case Fault::none:
        return "none";
    case Fault::noOutput:
        return "no table";
    case Fault::noHeader:
        return "no header";
    default:
        return "a line before the header";
    }
}

bool RowReader::next(Row& row)
{
    while (m_number < m_lines.size()) {
        std::vector<std::string> columns = CZeStringTool::tokenize(m_lines[m_number++], " \n\t");
        columns.resize(3);
        row = {std::move(columns[0]), std::move(columns[1]), std::move(columns[2])};
        if (!row.name.empty())
            return true;
    }
    return false;
}

Row firstNode(const Lines& lines)
{
    Row row;
    RowReader(lines).next(row);
    return row;
}

Row bestPath(const Lines& lines)
{
    Row firstEnabled;
    Row firstPrimary;
    RowReader reader(lines);
    for (Row row; reader.next(row);) {
        if (row.isActive())
            return row;
        if (row.isEnabled()) {
            if (firstEnabled.name.empty())
                firstEnabled = row;
        } else if (firstPrimary.name.empty() && row.type.find("PRIMARY") != std::string::npos) {
            firstPrimary = row;
        }
    }
    return firstEnabled.name.empty() ? firstPrimary : firstEnabled;
}

} // namespace kovm

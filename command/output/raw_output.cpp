#include "output/raw_output.h"

#include "output/cell_text.h"
#include "pdk/include/czeprintable.h"
#include "text/printable.h"

namespace command {

namespace {

constexpr char none[] = "-";
constexpr char empty[] = "\"\"";

/// A text that is one of the placeholders is escaped.
std::string word(const Field& field)
{
    if (isNone(field))
        return none;
    const std::string text = cellText(field);
    if (text.empty())
        return empty;
    if (text != none && text != empty)
        return printableWord(text);
    std::string escaped;
    koze_pdk_4_4::appendEscaped(escaped, text);
    return escaped;
}

} // namespace

RawOutput::RawOutput(OutputStream& output, const std::vector<Heading>& headings) : m_output(output)
{
    Row names;
    for (const Heading& heading : headings)
        names.emplace_back(std::string(heading.name));
    if (!names.empty())
        RawOutput::write(names);
}

void RawOutput::write(const Row& row)
{
    std::string line;
    for (const Field& field : row)
        line += word(field) + ' ';
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command

#include "output/raw_output.h"

#include "output/cell_text.h"
#include "text/printable.h"

namespace command {

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
        line += printableWord(cellText(field)) + ' ';
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command

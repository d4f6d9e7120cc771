#include "output/pairs_output.h"

#include <string>

#include "output/cell_text.h"
#include "text/printable.h"

namespace command {

void PairsOutput::write(const Row& row)
{
    std::string line;
    for (std::size_t column = 0; column < m_headings.size(); ++column) {
        (line += m_headings[column].name) += "=\"";
        if (!isNone(row[column]))
            line += printableQuoted(cellText(row[column]));
        line += "\" ";
    }
    line.back() = '\n';
    m_output.write(line);
}

} // namespace command

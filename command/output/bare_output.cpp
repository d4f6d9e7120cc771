#include "output/bare_output.h"

#include "output/cell_text.h"
#include "text/printable.h"

namespace command {

void BareOutput::write(const Row& row)
{
    std::string text;
    if (!isNone(row.front()))
        text = cellText(row.front());
    m_output.write((m_isTerminal ? printable(text) : text) + m_end);
}

} // namespace command

#include "output/bare_output.h"

#include "output/cell_text.h"
#include "text/printable.h"

namespace command {

void BareOutput::write(const Row& row)
{
    if (!std::holds_alternative<std::monostate>(row.front())) {
        const std::string text = cellText(row.front());
        m_output.write(m_isTerminal ? printable(text) : text);
    }
    m_output.write("\n");
}

} // namespace command

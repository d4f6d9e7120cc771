#include "bare_output.h"

#include "printable.h"

namespace command {

void BareOutput::write(const Row& row)
{
    const Row& field = row.at(m_column.key);
    if (!field.is_null())
        m_output.write(m_isTerminal ? printable(cellText(field)) : cellText(field));
    m_output.write("\n");
}

} // namespace command

#include "cli/path_source.h"

namespace command {

std::optional<std::string> PathSource::next()
{
    while (m_position < m_arguments.size()) {
        if (m_arguments[m_position] != "-")
            return m_arguments[m_position++];
        if (std::optional<std::string> line = m_standardInput.next())
            return line;
        ++m_position;
    }
    return std::nullopt;
}

} // namespace command

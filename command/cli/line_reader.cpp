#include "cli/line_reader.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include <unistd.h>

#include "cli/complaint.h"

namespace command {

std::optional<std::string> LineReader::next()
{
    for (;;) {
        std::optional<std::string> line = nextWhole();
        if (!line || m_separator == '\0')
            return line;
        takeOffCarriageReturn(*line);
        if (!line->empty())
            return line;
    }
}

void LineReader::takeOffCarriageReturn(std::string& line)
{
    if (line.empty() || line.back() != '\r')
        return;
    line.pop_back();
    if (!m_hasWarned)
        complain("lines of standard input end with a carriage return, which is taken off; "
                 "to keep it, separate the names by NULs");
    m_hasWarned = true;
}

std::optional<std::string> LineReader::nextWhole()
{
    for (;;) {
        const std::size_t end = findSeparator();
        if (end != std::string::npos)
            return take(end);
        m_searched = m_buffer.size();
        if (m_ended)
            break;
        receive();
    }
    if (m_begin == m_buffer.size())
        return std::nullopt;
    return take(m_buffer.size());
}

std::size_t LineReader::findSeparator()
{
    if (m_separator)
        return m_buffer.find(*m_separator, m_searched);
    constexpr std::string_view separators("\n\0", 2);
    const std::size_t found = m_buffer.find_first_of(separators, m_searched);
    if (found != std::string::npos)
        m_separator = m_buffer[found];
    return found;
}

std::string LineReader::take(std::size_t end)
{
    std::string line = m_buffer.substr(m_begin, end - m_begin);
    m_begin = m_searched = std::min(end + 1, m_buffer.size());
    return line;
}

void LineReader::receive()
{
    m_buffer.erase(0, m_begin);
    m_searched -= m_begin;
    m_begin = 0;
    m_beforeWait();
    std::array<char, 65536> block;
    ssize_t size = 0;
    do
        size = read(m_descriptor, block.data(), block.size());
    while (size < 0 && errno == EINTR);
    if (size < 0)
        throw std::system_error(errno, std::generic_category(), "cannot read standard input");
    m_ended = size == 0;
    m_buffer.append(block.data(), static_cast<std::size_t>(size));
}

} // namespace command

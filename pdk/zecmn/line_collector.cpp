#include "line_collector.h"

namespace koze_pdk_4_4::runner {

void LineCollector::add(std::string_view bytes)
{
    while (!bytes.empty() && !m_budget.exceeded) {
        const std::size_t end = bytes.find('\n');
        if (end == std::string_view::npos) {
            hold(bytes);
            return;
        }
        std::string_view line = bytes.substr(0, end);
        if (!m_held.empty()) {
            if (!hold(line))
                return;
            line = m_held;
        }
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        store(line);
        bytes.remove_prefix(end + 1);
    }
}

void LineCollector::finish()
{
    if (!m_held.empty())
        store(m_held);
}

/// Keeps the beginning of a line whose end has not arrived. Returns false when it is too long. It
/// may be one byte longer than a line: that byte may be the "\r" of the line's end.
bool LineCollector::hold(std::string_view piece)
{
    if (piece.size() > m_budget.longestLine + 1 - m_held.size()) {
        m_budget.exceeded = true;
        m_held.clear();
        return false;
    }
    m_held += piece;
    return true;
}

void LineCollector::store(std::string_view line)
{
    m_budget.exceeded =
        m_budget.exceeded || line.size() > m_budget.longestLine || cost(line) > m_budget.bytesLeft;
    if (!m_budget.exceeded) {
        m_lines.emplace_back(line);
        m_budget.bytesLeft -= cost(line);
    }
    m_held.clear();
}

std::size_t cost(std::string_view line)
{
    return line.size() + sizeof(std::string);
}

void keepBeginning(std::vector<std::string>& lines, std::size_t first, std::size_t bytes)
{
    std::size_t kept = first;
    while (kept < lines.size() && cost(lines[kept]) <= bytes)
        bytes -= cost(lines[kept++]);
    lines.resize(kept);
    lines.shrink_to_fit();
}

} // namespace koze_pdk_4_4::runner

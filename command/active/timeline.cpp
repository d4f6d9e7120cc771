#include "active/timeline.h"

#include <utility>

namespace command {

void Timeline::take(const TraceEvent& event, Clock::time_point now)
{
    if (m_isOpen && m_steps.back().isWait()) {
        close(now);
        ++m_attempt;
    }
    switch (event.kind) {
    case TraceEvent::Kind::toolStarts:
        open(std::string(event.command), now);
        break;
    case TraceEvent::Kind::toolFails:
    case TraceEvent::Kind::toolCannotRun:
        if (m_isOpen)
            m_steps.back().result = event.result;
        break;
    case TraceEvent::Kind::toolEnds:
        if (m_isOpen)
            close(now);
        break;
    case TraceEvent::Kind::waitStarts:
        open({}, now);
        break;
    default:
        break;
    }
}

void Timeline::open(std::string command, Clock::time_point now)
{
    m_steps.push_back({std::move(command), 0, now});
    m_isOpen = true;
}

void Timeline::close(Clock::time_point now)
{
    m_steps.back().duration = now - m_steps.back().begin;
    m_isOpen = false;
}

} // namespace command

#include "active_lookup.h"

#include <cmath>
#include <utility>

#include "device_row.h"
#include "drivers.h"
#include "tool_name.h"

namespace {

using command::Row;
using command::Timeline;

/// To the millisecond, which is as exact as processes are.
double seconds(Timeline::Clock::duration duration)
{
    return std::round(std::chrono::duration<double, std::milli>(duration).count()) / 1000;
}

Row stepRow(const Timeline::Step& step)
{
    if (step.isWait())
        return {{"wait", seconds(step.duration)}};
    return {{"command", step.command},
            {"seconds", seconds(step.duration)},
            {"result", step.result ? Row(*step.result) : Row()}};
}

Row timelineField(const Timeline& timeline)
{
    Row field = Row::array();
    for (const Timeline::Step& step : timeline.steps())
        field.push_back(stepRow(step));
    return field;
}

} // namespace

namespace command {

ActiveLookup::ActiveLookup(bool refresh, koze_pdk_4_4::CZeTraceSinkHandle sink, StopRequest& stop,
                           LookupStatus& status)
    : m_refresh(refresh), m_sink(sink), m_stop(stop), m_status(status)
{}

ActiveLookup::~ActiveLookup()
{
    if (m_toolRuns)
        m_stop.endTool();
    m_status.set({});
}

Row ActiveLookup::run(const std::string& path)
{
    m_path = path;
    koze_pdk_4_4::CZeTraceLogHandle log = new koze_pdk_4_4::CZeTraceLog;
    log->setSink(new koze_pdk_4_4::CZeTraceCallbackSink(
        koze_pdk_4_4::CZeTraceSink::everything,
        [this](int level, std::string_view text) { take(level, text); }));
    CDmpClaimManager manager;
    manager.registerTraceLog(log);
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, path);
    const Answer answer = owner == nullptr ? Answer() : ask(*owner);
    const Timeline::Clock::duration took = Timeline::Clock::now() - m_begin;
    return {{"name", path},
            {"owner", ownerField(owner)},
            {"active", answer.active},
            {"changed", !answer.active.is_null() && answer.active != path},
            {"took", seconds(took)},
            {"timeline", timelineField(m_timeline)},
            {"warning", answer.warning}};
}

ActiveLookup::Answer ActiveLookup::ask(CDmpDeviceClaimBase& owner)
{
    const char* obstacle = asksTools(&owner) ? whyNotAsked(m_path) : nullptr;
    if (obstacle != nullptr)
        return {nullptr, std::string("not looked up: ") + obstacle};
    const std::string active = owner.getActivePath(m_path, !m_refresh);
    const char* fault = active == m_path ? nullptr : whyNotUsed(active);
    if (fault != nullptr)
        return {active, "do not use the active path '" + active + "': " + fault};
    return {active, nullptr};
}

void ActiveLookup::take(int level, std::string_view text)
{
    if (m_sink && m_sink->wants(level))
        m_sink->write(level, text);
    const TraceEvent event = traceEvent(level, text);
    m_timeline.take(event, Timeline::Clock::now());
    report();
    countTool(event.kind);
}

/// While a tool runs, no line ends the lookup: the runner would leave the tool behind.
void ActiveLookup::countTool(TraceEvent::Kind kind)
{
    if (kind == TraceEvent::Kind::toolStarts) {
        m_stop.beginTool();
        m_toolRuns = true;
    } else if (kind == TraceEvent::Kind::toolEnds && m_toolRuns) {
        m_toolRuns = false;
        m_stop.endTool();
    }
    if (!m_toolRuns)
        m_stop.check();
}

void ActiveLookup::report()
{
    Activity activity{m_path, m_timeline.attempt(), {}, false, m_begin, {}};
    if (const Timeline::Step* step = m_timeline.current()) {
        activity.command = step->command;
        activity.isWaiting = step->isWait();
        activity.stepBegin = step->begin;
    }
    m_status.set(std::move(activity));
}

} // namespace command

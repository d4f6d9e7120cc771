#include "active/active_lookup.h"

#include <utility>

#include "names/tool_name.h"

namespace command {

namespace {

Steps stepsOf(const Timeline& timeline)
{
    Steps steps;
    for (const Timeline::Step& step : timeline.steps())
        steps.push_back({step.command, step.result, step.duration});
    return steps;
}

} // namespace

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

LookupResult ActiveLookup::run(const std::string& path)
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
    LookupResult result;
    result.name = path;
    result.owner = driverOf(owner);
    if (owner != nullptr)
        ask(*owner, result);
    result.took = Timeline::Clock::now() - m_begin;
    result.timeline = stepsOf(m_timeline);
    return result;
}

void ActiveLookup::ask(CDmpDeviceClaimBase& owner, LookupResult& result)
{
    const char* obstacle = result.owner->asksTools ? whyNotAsked(m_path) : nullptr;
    if (obstacle != nullptr) {
        result.warning = std::string("not looked up: ") + obstacle;
        return;
    }
    result.active = owner.getActivePath(m_path, !m_refresh);
    const char* fault = result.isChanged() ? whyNotUsed(*result.active) : nullptr;
    if (fault != nullptr)
        result.warning = "do not use the active path '" + *result.active + "': " + fault;
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

/// Throws Interrupted only while no tool runs: thrown through the runner, it would leave the tool
/// running.
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

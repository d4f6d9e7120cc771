#include "active/active_lookup.h"

#include <algorithm>
#include <utility>

#include "active/short_command.h"
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

ActiveLookup::ActiveLookup(const LookupRules& rules, koze_pdk_4_4::CZeTraceSinkHandle sink,
                           StopRequest& stop, LookupStatus& status)
    : m_rules(rules), m_sink(sink), m_stop(stop), m_status(status)
{}

ActiveLookup::~ActiveLookup()
{
    endTool();
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
        answer(*owner, result);
    else
        result.outcome = {Outcome::Code::notClaimed, "no driver claims it"};
    result.took = Timeline::Clock::now() - m_begin;
    result.timeline = stepsOf(m_timeline);
    return result;
}

void ActiveLookup::answer(CDmpDeviceClaimBase& owner, LookupResult& result)
{
    unsigned int partnum = 0;
    result.disk = owner.removePartitionSuffix(m_path, partnum);
    if (!result.owner->asksTools) {
        result.active = owner.getActivePath(m_path, !m_rules.refresh);
        result.outcome = {Outcome::Code::notAsked,
                          std::string("the volume manager is not asked about paths of ") +
                              result.owner->name};
    } else if (const char* obstacle = whyNotAsked(m_path)) {
        result.outcome = {Outcome::Code::notAsked, obstacle};
        result.warning = std::string("not looked up: ") + obstacle;
    } else {
        ask(owner, result);
    }
}

/// Asks about the disk of a partition: the volume manager does not know partitions. The number is
/// kept as it is written: appendPartitionSuffix would make 7 of 007.
void ActiveLookup::ask(CDmpDeviceClaimBase& owner, LookupResult& result)
{
    const std::string& asked = m_rules.asGiven ? m_path : *result.disk;
    const std::string active = askLibrary(owner, asked, result.outcome);
    result.active = active == asked ? m_path : active + m_path.substr(asked.size());
    const char* fault = result.isChanged() ? whyNotUsed(*result.active) : nullptr;
    if (fault != nullptr)
        result.warning = "do not use the active path '" + *result.active + "': " + fault;
}

/// The library's answer and how it came about. A lookup that is ended early has failed, and the
/// library's answer to that is the path itself.
std::string ActiveLookup::askLibrary(CDmpDeviceClaimBase& owner, const std::string& asked,
                                     Outcome& outcome)
{
    const std::string disk = owner.removeDevPrefix(asked);
    m_isAsking = true;
    try {
        std::string active = owner.getActivePath(asked, !m_rules.refresh);
        outcome = outcomeOf(disk, active);
        return active;
    } catch (const NoAttemptLeft& end) {
        outcome = outcomeOf(disk, asked);
        outcome.reason += end.why;
    } catch (const Interrupted&) {
        if (m_stop.reason() != StopReason::timeLimit)
            throw;
        outcome = lateOutcome();
    }
    return asked;
}

Outcome ActiveLookup::outcomeOf(const std::string& disk, const std::string& active) const
{
    Outcome outcome = m_evidence.outcome(disk, active);
    const int attempts = std::min(m_timeline.attempt(), m_rules.policy().attempts);
    if (!outcome.isGood() && attempts > 1)
        outcome.reason += " (" + std::to_string(attempts) + " attempts)";
    return outcome;
}

Outcome ActiveLookup::lateOutcome() const
{
    const std::string passed = "the time limit passed ";
    if (m_timeline.steps().empty())
        return {Outcome::Code::timedOut, passed + "before the volume manager was asked"};
    const Timeline::Step& last = m_timeline.steps().back();
    return {Outcome::Code::timedOut,
            passed + (last.isWait() ? "in a pause" : "during " + shortCommand(last.command))};
}

void ActiveLookup::take(int level, std::string_view text)
{
    if (m_sink && m_sink->wants(level))
        m_sink->write(level, text);
    const TraceEvent event = traceEvent(level, text);
    const Timeline::Clock::time_point now = Timeline::Clock::now();
    if (event.kind == TraceEvent::Kind::waitStarts)
        checkAttempts(now);
    m_evidence.take(event);
    m_timeline.take(event, now);
    report();
    countTool(event.kind);
}

/// Called when an attempt has failed, before the pause. The library has neither a number of
/// attempts nor a time limit to set, and its pauses cannot be cut short.
void ActiveLookup::checkAttempts(Timeline::Clock::time_point now) const
{
    if (m_rules.tries && m_timeline.attempt() >= *m_rules.tries)
        throw NoAttemptLeft{""};
    if (m_rules.limit && now + m_rules.policy().pause >= *m_rules.limit)
        throw NoAttemptLeft{"; the time limit leaves no time for another attempt"};
}

/// Throws Interrupted only while no tool runs: thrown through the runner, it would leave the tool
/// running.
void ActiveLookup::countTool(TraceEvent::Kind kind)
{
    if (kind == TraceEvent::Kind::toolStarts) {
        endTool(); // the one before: without memory its end is not told
        m_stop.beginTool();
        m_toolRuns = true;
    } else if (kind == TraceEvent::Kind::toolEnds) {
        endTool();
    }
    if (m_isAsking && !m_toolRuns)
        m_stop.check();
}

void ActiveLookup::endTool()
{
    if (std::exchange(m_toolRuns, false))
        m_stop.endTool();
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

#ifndef ACTIVE_ACTIVE_LOOKUP_H
#define ACTIVE_ACTIVE_LOOKUP_H

#include <string>

#include "active/evidence.h"
#include "active/lookup_result.h"
#include "active/lookup_rules.h"
#include "active/lookup_status.h"
#include "active/timeline.h"
#include "interrupt/stop_request.h"
#include "pdk/include/czetracesink.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// Looks up the active path of one device, with a claim manager and a trace log of its own.
///
/// The trace log is the only hook into a running lookup: the library's operations return the path
/// and nothing else, and take no callback. The timeline, the progress and the reaction to a
/// StopRequest therefore depend on the trace lines.
class ActiveLookup {
public:
    /// The trace lines also go to `sink`, unless it is empty. The lookup checks `stop` and sets
    /// `status`; both must outlive it.
    ActiveLookup(const LookupRules& rules, koze_pdk_4_4::CZeTraceSinkHandle sink, StopRequest& stop,
                 LookupStatus& status);
    ActiveLookup(const ActiveLookup&) = delete;
    ActiveLookup& operator=(const ActiveLookup&) = delete;
    ~ActiveLookup();

    /// Throws Interrupted once `stop` is requested by an interrupt; the time limit is an outcome.
    /// Blocks while tools run and in the pauses between attempts. Called once.
    LookupResult run(const std::string& path);

private:
    /// Thrown through the library when an attempt has failed and no other one is to follow.
    struct NoAttemptLeft {
        const char* why; // added to the reason
    };

    void answer(CDmpDeviceClaimBase& owner, LookupResult& result);
    void ask(CDmpDeviceClaimBase& owner, LookupResult& result);
    std::string askLibrary(CDmpDeviceClaimBase& owner, const std::string& asked, Outcome& outcome);
    Outcome outcomeOf(const std::string& disk, const std::string& active) const;
    Outcome lateOutcome() const;
    void take(int level, std::string_view text);
    void checkAttempts(Timeline::Clock::time_point now) const;
    void countTool(TraceEvent::Kind kind);
    void endTool();
    void report();

    LookupRules m_rules;
    koze_pdk_4_4::CZeTraceSinkHandle m_sink;
    StopRequest& m_stop;
    LookupStatus& m_status;
    Timeline m_timeline;
    Evidence m_evidence;
    Timeline::Clock::time_point m_begin = Timeline::Clock::now();
    std::string m_path;
    bool m_isAsking = false;
    bool m_toolRuns = false;
};

} // namespace command

#endif

#ifndef ACTIVE_LOOKUP_H
#define ACTIVE_LOOKUP_H

#include <string>

#include "lookup_status.h"
#include "pdk/include/czetracesink.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "row.h"
#include "stop_request.h"
#include "timeline.h"

namespace command {

/// Looks up the active path of one device, with a claim manager and a trace log of its own.
class ActiveLookup {
public:
    /// The trace lines also go to `sink`, unless it is empty. `stop` ends the lookup, `status`
    /// tells what it does; both outlive it.
    ActiveLookup(bool refresh, koze_pdk_4_4::CZeTraceSinkHandle sink, StopRequest& stop,
                 LookupStatus& status);
    ActiveLookup(const ActiveLookup&) = delete;
    ActiveLookup& operator=(const ActiveLookup&) = delete;
    ~ActiveLookup();

    /// Returns name, owner, active, changed, took, timeline and warning, which is null unless the
    /// path cannot be looked up or its active path is not to be used; see tool_name.h. Throws
    /// Interrupted when stopped. Blocks while tools run and in the pauses between attempts. Called
    /// once.
    Row run(const std::string& path);

private:
    struct Answer {
        Row active;
        Row warning;
    };

    Answer ask(CDmpDeviceClaimBase& owner);
    void take(int level, std::string_view text);
    void countTool(TraceEvent::Kind kind);
    void report();

    bool m_refresh;
    koze_pdk_4_4::CZeTraceSinkHandle m_sink;
    StopRequest& m_stop;
    LookupStatus& m_status;
    Timeline m_timeline;
    Timeline::Clock::time_point m_begin = Timeline::Clock::now();
    std::string m_path;
    bool m_toolRuns = false;
};

} // namespace command

#endif

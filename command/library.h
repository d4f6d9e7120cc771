#ifndef LIBRARY_H
#define LIBRARY_H

#include "cli/trace.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

namespace command {

/// The library with the user's trace log.
struct Library {
    explicit Library(const TraceOptions& trace) : log(openTraceLog(trace))
    {
        manager.registerTraceLog(log);
    }

    koze_pdk_4_4::CZeTraceLogHandle log;
    CDmpClaimManager manager;
};

} // namespace command

#endif

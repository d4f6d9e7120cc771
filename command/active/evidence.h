#ifndef ACTIVE_EVIDENCE_H
#define ACTIVE_EVIDENCE_H

#include <optional>
#include <string>

#include "active/outcome.h"
#include "active/trace_event.h"
#include "kovm/tables.h"

namespace command {

/// What a tool answered in a lookup.
struct ToolAnswer {
    std::string tool;              // and its subcommand
    std::optional<int> result = 0; // nothing when it could not be run
    std::string words;             // what it printed when it failed, shortened
    kovm::Fault fault = kovm::Fault::noOutput;
    bool hasEnabled = false;
};

/// Tells from the trace lines of a lookup why the library answered as it did: its operation returns
/// a path and nothing else. Serves one thread.
class Evidence {
public:
    Evidence() = default;
    Evidence(const Evidence&) = delete;
    Evidence& operator=(const Evidence&) = delete;

    /// Takes the event of the next trace line.
    void take(const TraceEvent& event);

    /// The outcome of the last attempt to look up `disk`, such as sdc. REQUIRES: that attempt has
    /// ended, and the disk's driver asks tools.
    Outcome outcome(const std::string& disk, const std::string& activePath) const;

private:
    void start(const TraceEvent& event);
    void takeOutput(const TraceEvent& event);
    Outcome pathOutcome(const std::string& disk, const std::string& activePath) const;

    std::optional<ToolAnswer> m_node;
    std::optional<ToolAnswer> m_path; // nothing when the node was not asked for its path
    ToolAnswer* m_current = nullptr;  // null when the last tool is none of these
    std::string m_nodeName;
    bool m_isPathNamed = false;
};

} // namespace command

#endif

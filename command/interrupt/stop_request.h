#ifndef INTERRUPT_STOP_REQUEST_H
#define INTERRUPT_STOP_REQUEST_H

#include <atomic>

namespace command {

/// Thrown to end a lookup early.
struct Interrupted {};

/// Asks the lookups of all threads to end, and knows whether one of them runs a tool. Safe between
/// threads.
class StopRequest {
public:
    void request() { m_isRequested = true; }

    /// Throws Interrupted once the request is made.
    void check() const
    {
        if (m_isRequested)
            throw Interrupted();
    }

    /// Called before a tool is started. Throws Interrupted once the request is made. Increments
    /// before testing, so that a concurrent request either counts this tool or prevents it.
    void beginTool()
    {
        ++m_tools;
        if (m_isRequested) {
            --m_tools;
            throw Interrupted();
        }
    }

    /// Called when the tool has ended.
    void endTool() { --m_tools; }

    bool toolsRun() const { return m_tools > 0; }

private:
    std::atomic<bool> m_isRequested{false};
    std::atomic<int> m_tools{0};
};

/// Counts as a running tool while it lives. The constructor throws what beginTool throws.
class RunningTool {
public:
    explicit RunningTool(StopRequest& stop) : m_stop(stop) { m_stop.beginTool(); }
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;
    ~RunningTool() { m_stop.endTool(); }

private:
    StopRequest& m_stop;
};

} // namespace command

#endif

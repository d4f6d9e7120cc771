#ifndef INTERRUPT_STOP_REQUEST_H
#define INTERRUPT_STOP_REQUEST_H

#include <atomic>

namespace command {

/// Thrown to end a lookup early.
struct Interrupted {};

/// Why lookups are to end early.
enum class StopReason { none, interrupt, timeLimit };

/// Asks the lookups of all threads to end, and knows whether one of them runs a tool. Safe between
/// threads.
class StopRequest {
public:
    void request(StopReason reason = StopReason::interrupt) { m_reason = reason; }

    /// The reason of the last request.
    StopReason reason() const { return m_reason; }

    bool isRequested() const { return m_reason != StopReason::none; }

    /// Throws Interrupted once the request is made.
    void check() const
    {
        if (isRequested())
            throw Interrupted();
    }

    /// Called before a tool is started. Throws Interrupted once the request is made. Increments
    /// before testing, so that a concurrent request either counts this tool or prevents it.
    void beginTool()
    {
        ++m_tools;
        if (isRequested()) {
            --m_tools;
            throw Interrupted();
        }
    }

    /// Called when the tool has ended.
    void endTool() { --m_tools; }

    bool toolsRun() const { return m_tools > 0; }

private:
    std::atomic<StopReason> m_reason{StopReason::none};
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

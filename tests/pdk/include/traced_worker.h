#ifndef TRACED_WORKER_H
#define TRACED_WORKER_H

#include <stdexcept>

#include "pdk/include/czetracelog.h"

/// A log that adds one to `ends` when it is destroyed.
class WatchedLog : public koze_pdk_4_4::CZeTraceLog {
public:
    explicit WatchedLog(int& ends) : m_ends(ends) {}
    ~WatchedLog() override { ++m_ends; }

private:
    int& m_ends;
};

/// A class that traces itself: by the function tracer, and by single lines.
class Worker : public koze_pdk_4_4::CZeTraceable {
public:
    Worker() { CZE_TRACE_FUNCTION(); }

    int work()
    {
        CZE_TRACE_FUNCTION();
        return __LINE__ - 1;
    }

    void change(const koze_pdk_4_4::CZeTraceLogHandle& log)
    {
        CZE_TRACE_FUNCTION();
        registerTraceLog(log);
    }

    void fail()
    {
        CZE_TRACE_FUNCTION();
        throw std::runtime_error("failed");
    }

    void report(const char* text) { CZE_TRACE(3, "INFO: %s %d", text, ++m_evaluations); }

    void reportWhen(bool wanted)
    {
        if (wanted)
            CZE_TRACE(3, "wanted");
        else
            CZE_TRACE(2, "unwanted");
    }

    koze_pdk_4_4::CZeTraceLogHandle& log() { return m_traceLog; }

    /// How often `report` has evaluated its arguments.
    int evaluations() const { return m_evaluations; }

private:
    int m_evaluations = 0;
};

#endif

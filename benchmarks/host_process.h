#ifndef BENCHMARKS_HOST_PROCESS_H
#define BENCHMARKS_HOST_PROCESS_H

#include <functional>
#include <memory>

#include "benchmarks/comparison.h"

/// A process of its own in which sides are measured: one with much memory, or with other limits.
class HostProcess {
public:
    /// Forks, and calls `prepare` in the new process.
    HostProcess(const std::function<void()>& prepare, std::vector<Measure> measures);
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    ~HostProcess();

    /// The measure of this number, taken in that process.
    Measure measure(std::size_t number) const;

private:
    [[noreturn]] void serve() const;

    std::vector<Measure> m_measures;
    int m_socket = -1;
    int m_pid = 0;
};

#endif

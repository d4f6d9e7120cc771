#ifndef CHILD_PLAN_H
#define CHILD_PLAN_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "program.h"

namespace koze_pdk_4_4::runner {

/// The descriptors that become a program's standard three. None of them is one of these already.
struct StandardStreams {
    int input;
    int output;
    int errors;
};

/// A child's way from clone to its program, and the memory for it. Until the program has started,
/// the child shares the host's memory: the plan must outlive that, see `inUse`.
class ChildPlan {
public:
    ChildPlan(Program program, const StandardStreams& streams);
    ChildPlan(const ChildPlan&) = delete;
    ChildPlan& operator=(const ChildPlan&) = delete;

    /// Entry of the child, called by clone with the plan on `stackTop`. Returns only on failure.
    static int enter(void* plan);
    void* stackTop() { return m_stack + sizeof m_stack; }

    /// The kernel clears this, and wakes those who wait for it, when the child leaves the host's
    /// memory: its program has started, or it has ended.
    std::atomic<std::uint32_t>& inUse() { return m_inUse; }

    /// What failed and errno's value, once the child has left; null when the program has started.
    const char* failedStep() const { return m_failedStep; }
    int error() const { return m_error; }

private:
    const char* start() const;

    Program m_program;
    StandardStreams m_streams;
    std::vector<char*> m_arguments;
    std::vector<char*> m_environment;
    const char* m_failedStep = nullptr;
    int m_error = 0;
    std::atomic<std::uint32_t> m_inUse{1};
    alignas(16) std::byte m_stack[std::size_t{64} << 10];
};

} // namespace koze_pdk_4_4::runner

#endif

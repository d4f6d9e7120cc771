#ifndef CHILD_PLAN_H
#define CHILD_PLAN_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
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

/// What failed in a child that could not start its program, and errno's value. The step is written
/// last, and null until then.
struct Failure {
    int error = 0;
    std::atomic<const char*> step{nullptr};
};

struct UnmapFailure {
    void operator()(Failure* failure) const;
};

/// A child's way from clone to its program, and the memory for it. Where the child shares the
/// host's memory until its program has started, the plan must outlive that, see `inUse`.
class ChildPlan {
public:
    ChildPlan(Program program, const StandardStreams& streams);
    ChildPlan(const ChildPlan&) = delete;
    ChildPlan& operator=(const ChildPlan&) = delete;

    /// Whether the child shares the host's memory, so that its cost does not grow with the host. A
    /// child that switches to another user has a copy instead: only the dumpable flag of a memory
    /// keeps that user's processes out, and any thread of the host may set the flag of its own.
    bool sharesMemory() const { return !m_program.identity; }

    /// Entry of the child, called by clone with the plan on `stackTop`. Returns only on failure.
    static int enter(void* plan);
    void* stackTop() { return m_stack + sizeof m_stack; }

    /// Whether the child shares the host's memory now. The kernel clears this, and wakes those who
    /// wait for it, when the child leaves that memory: its program has started, or it has ended.
    std::atomic<std::uint32_t>& inUse() { return m_inUse; }

    /// Complete once the child has left, and of a child with a copy, once it has ended.
    const Failure& failure() const { return m_failure; }

private:
    const char* start() const;

    Program m_program;
    StandardStreams m_streams;
    std::vector<char*> m_arguments;
    std::vector<char*> m_environment;
    Failure m_ownFailure;
    std::unique_ptr<Failure, UnmapFailure> m_mappedFailure; // for a child with a copy
    Failure& m_failure;
    std::atomic<std::uint32_t> m_inUse{1};
    alignas(16) std::byte m_stack[std::size_t{64} << 10];
};

} // namespace koze_pdk_4_4::runner

#endif

#ifndef ZECMN_CHILD_PLAN_H
#define ZECMN_CHILD_PLAN_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "program.h"

namespace koze_pdk_4_4::runner {

/// The descriptors that become a program's stdin, stdout and stderr. Each is above 2: placing one
/// must not close another.
struct StandardStreams {
    int input;
    int output;
    int errors;
};

/// Why a child could not start its program: errno and the step that failed. The step is written
/// last; until then it is null.
struct Failure {
    int error = 0;
    std::atomic<const char*> step{nullptr};
};

struct UnmapFailure {
    void operator()(Failure* failure) const;
};

/// What a child does between clone and execve, and the memory that it needs for that. The plan must
/// not be freed while `sharesMemory` is 1, because the child still uses it.
class ChildPlan {
public:
    ChildPlan(Program program, const StandardStreams& streams);
    ChildPlan(const ChildPlan&) = delete;
    ChildPlan& operator=(const ChildPlan&) = delete;

    /// Whether the child gets a copy of the host's memory. Most children share the memory, because
    /// a copy takes longer the larger the host is. A child that switches to another user needs the
    /// copy: only the dumpable flag keeps that user's processes out of its memory, and any thread
    /// of the host may set the flag of the host's memory.
    bool copiesMemory() const { return m_program.identity.has_value(); }

    /// Entry of the child, called by clone with the plan on `stackTop`. Returns only on failure.
    static int enter(void* plan);
    void* stackTop() { return m_stack + sizeof m_stack; }

    /// The futex word: 1 while the child shares the host's memory. The kernel sets it to 0 and
    /// wakes its waiters when the child has executed its program or has ended
    /// (CLONE_CHILD_CLEARTID).
    std::atomic<std::uint32_t>& sharesMemory() { return m_sharesMemory; }

    /// Complete once `sharesMemory` is 0; of a child with a copy of the memory, once it has ended.
    const Failure& failure() const { return m_failure; }

private:
    const char* start() const;

    Program m_program;
    StandardStreams m_streams;
    std::vector<char*> m_arguments;
    std::vector<char*> m_environment;
    Failure m_ownFailure;
    std::unique_ptr<Failure, UnmapFailure> m_mappedFailure; // of a child with a copy of the memory
    Failure& m_failure;
    std::atomic<std::uint32_t> m_sharesMemory{1};
    alignas(16) std::byte m_stack[std::size_t{64} << 10];
};

} // namespace koze_pdk_4_4::runner

#endif

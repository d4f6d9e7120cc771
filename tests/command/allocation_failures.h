#ifndef TESTS_COMMAND_ALLOCATION_FAILURES_H
#define TESTS_COMMAND_ALLOCATION_FAILURES_H

#include <cstddef>
#include <functional>
#include <string>

#include "output/output_stream.h"

/// Lets each allocation of an operation fail once, in a test program that links allocation_probe.
class AllocationFailures {
public:
    /// Writes its answer to the stream.
    using Operation = std::function<void(command::OutputStream&)>;
    /// What counts of an answer.
    using Part = std::function<std::string(std::string answer)>;

    explicit AllocationFailures(
        Operation operation, Part part = [](std::string answer) { return answer; });

    /// Expects that each failure ends the operation with std::bad_alloc, or is made up for: then
    /// the answer is whole. Nothing leaks but the modules of a claim manager that cannot be made:
    /// those that it has made belong to nobody. Returns the number of failures, and prints it.
    std::size_t failEach() const;

private:
    /// Whether the operation makes that many allocations.
    bool failsAt(std::size_t number) const;

    Operation m_operation;
    Part m_part;
    std::string m_whole;
};

#endif

#ifndef BENCHMARKS_COMPARISON_H
#define BENCHMARKS_COMPARISON_H

#include <cstddef>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Runs an operation so many times and returns the seconds that this took.
using Measure = std::function<double(std::size_t times)>;

/// One of the things that are compared: "ours", what a user would take instead, or a size.
struct Side {
    std::string name;
    Measure measure;
};

/// What a side's operation took, in nanoseconds, and the processes that it left running.
struct Result {
    std::string name;
    std::vector<double> nanoseconds{};
    std::optional<int> left{};
};

/// Prints a line of JSON, which measure.py reads:
///
///     {"name": "claim /dev/sdc", "sides": {"ours": [51.2, 50.9], "plain": [48.0, 47.8]}, "left":
///     {}}
void print(const std::string& name, const std::vector<Result>& results);

/// Measures the sides in alternation, and prints what they took. Each round gives every side a
/// turn, so that other load on the machine disturbs all of them alike.
///
/// Takes about as many seconds as the variable BENCHMARK_SECONDS says (1 without it), and longer
/// when five rounds do.
void compare(const std::string& name, const std::vector<Side>& sides);

/// Makes the compiler compute `value`, and forget what it knows of memory.
template <class Value>
void keep(const Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

inline double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Operation>
Measure timed(clockid_t clock, Operation operation)
{
    return [clock, operation](std::size_t times) {
        const double begin = secondsOf(clock);
        for (; times > 0; --times)
            operation();
        return secondsOf(clock) - begin;
    };
}

/// Measures the processor time of an operation that computes: other processes take none of it.
template <class Operation>
Measure computing(Operation operation)
{
    return timed(CLOCK_THREAD_CPUTIME_ID, operation);
}

/// Measures the time that passes while an operation waits, as for a program.
template <class Operation>
Measure waiting(Operation operation)
{
    return timed(CLOCK_MONOTONIC, operation);
}

#endif

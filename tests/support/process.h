#ifndef TESTS_SUPPORT_PROCESS_H
#define TESTS_SUPPORT_PROCESS_H

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "tests/support/descriptor.h"

struct Pipe {
    Descriptor reader;
    Descriptor writer;
};

Pipe makePipe();

/// A file without a name that holds `text`, at its beginning.
Descriptor fileHolding(std::string_view text);

/// How a process starts, besides its arguments.
struct Setting {
    int input = -1;  // a descriptor for stdin; -1 for a pipe from the test
    int output = -1; // a descriptor for stdout; -1 for a pipe to the test
    bool closedOutput = false;
    bool ignoredBrokenPipe = false;
    bool blockedBrokenPipe = false;
    std::vector<std::string> environment; // NAME=VALUE, besides the test's own
};

/// How a process ended, and what it wrote to the pipes.
struct Result {
    int status; // of exit; minus the signal's number when one ended it
    std::string output;
    std::string errors;
    long peakKilobytes; // of memory
};

/// A child with pipes to and from its standard streams. Every wait has a deadline: the child is
/// killed when it passes, and std::runtime_error thrown.
class Process {
public:
    explicit Process(const std::vector<std::string>& arguments, const Setting& setting = {});
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    void signal(int number) const;

    /// Whether it ends within that many milliseconds.
    bool endsWithin(int milliseconds) const;

    /// Writes to the child's standard input; what the child does not take is lost.
    void send(std::string_view text);

    /// The next line of the child's standard output, with its end.
    std::string receiveLine();

    /// Sends `input`, ends the child's standard input and waits for the child.
    Result finish(std::string_view input = {});

private:
    void exchange(std::string_view& input);
    void reap();

    pid_t m_pid = -1;
    Descriptor m_input;
    Descriptor m_output;
    Descriptor m_errors;
    Result m_result{};
    std::chrono::steady_clock::time_point m_deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(60);
};

#endif

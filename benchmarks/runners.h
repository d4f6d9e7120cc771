#ifndef BENCHMARKS_RUNNERS_H
#define BENCHMARKS_RUNNERS_H

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// A way to run a program. Programs are given as their path and arguments between single spaces.
struct Runner {
    const char* name;

    /// Runs a program that has to end with status 0, and returns the lines of its stdout.
    Lines (*run)(const std::string& command);

    /// Runs a program that is to be ended after a second, as the runner's manual has it. A runner
    /// without a limit runs the program under timeout(1).
    void (*runForSecond)(const std::string& command);
};

/// CZeExecPipePosix first, then what a user would take instead.
const std::vector<Runner>& runners();

/// Takes real-time priority for this process and the programs that it runs, if it may. Else a
/// program that leads a session of its own, as ours do, also waits for the processor's other
/// sessions, and the load of the machine is measured.
void keepOtherLoadAway();

#endif

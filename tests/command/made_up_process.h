#ifndef TESTS_COMMAND_MADE_UP_PROCESS_H
#define TESTS_COMMAND_MADE_UP_PROCESS_H

#include <string>
#include <vector>

#include "tests/command/namespaced_tools.h"
#include "tests/support/made_up_machine.h"

/// The command as a process that sees a made-up machine in /sys, and the simulated tools. Its /dev
/// is this machine's own.
class MadeUpProcess : public NamespacedTools {
protected:
    /// The command with its arguments, ready to start.
    std::vector<std::string> onMachine(const std::vector<std::string>& arguments) const;

    /// Waits until the volume manager is asked for the first time.
    void awaitQuestion() const;

    MadeUpMachine m_made;
};

#endif

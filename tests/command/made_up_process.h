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
    std::vector<std::string> onMachine(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> all{"sh", "-c", "mount --bind \"$0\" /sys && exec \"$@\"",
                                     m_made.roots().sysfs, DMPCLAIM_COMMAND};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return inNamespace(all);
    }

    /// Waits until the volume manager is asked for the first time.
    void awaitQuestion() const
    {
        for (int tries = 0; log().empty() && tries < 30'000; ++tries)
            usleep(1000);
    }

    MadeUpMachine m_made;
};

#endif

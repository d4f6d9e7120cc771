#ifndef TESTS_COMMAND_NAMESPACED_TOOLS_H
#define TESTS_COMMAND_NAMESPACED_TOOLS_H

#include <string>
#include <vector>

#include "tests/simulator/simulated_tools.h"

/// Programs that see the simulated tools in /usr/sbin, in a mount namespace of their own. The tests
/// are skipped where that is not permitted.
class NamespacedTools : public SimulatedTools {
protected:
    void SetUp() override;

    std::vector<std::string> inNamespace(const std::vector<std::string>& command) const;
};

#endif

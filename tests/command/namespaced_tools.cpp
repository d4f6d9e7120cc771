#include "tests/command/namespaced_tools.h"

#include "tests/support/namespaces.h"

namespace {

constexpr int notPermitted = 77;

} // namespace

void NamespacedTools::SetUp()
{
    useScenario("healthy");
    if (Process(inNamespace({"true"})).finish().status == notPermitted)
        endWithoutNamespaces();
}

std::vector<std::string> NamespacedTools::inNamespace(const std::vector<std::string>& command) const
{
    std::vector<std::string> all{SIMULATOR_WITH_TOOLS, "--tools", SIMULATOR_TOOLS, statePath()};
    all.insert(all.end(), command.begin(), command.end());
    return all;
}

#include "tests/command/made_up_process.h"

#include <unistd.h>

std::vector<std::string> MadeUpProcess::onMachine(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> all{"sh", "-c", "mount --bind \"$0\" /sys && exec \"$@\"",
                                 m_made.roots().sysfs, DMPCLAIM_COMMAND};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return inNamespace(all);
}

void MadeUpProcess::awaitQuestion() const
{
    for (int tries = 0; log().empty() && tries < 30'000; ++tries)
        usleep(1000);
}

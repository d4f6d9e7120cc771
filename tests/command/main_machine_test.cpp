// What the command says of a machine that lacks something.
#include "tests/command/namespaced_tools.h"

namespace {

using Machine = NamespacedTools;

TEST_F(Machine, WithoutSysfsCannotBeListed)
{
    const Result result =
        Process(inNamespace({"sh", "-c", "mount -t tmpfs none /sys && exec \"$@\"", "sh",
                             DMPCLAIM_COMMAND, "list"}))
            .finish();
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "dmpclaim: cannot read /sys/class/block: No such file or directory\n");
    EXPECT_EQ(result.status, 1);
}

} // namespace

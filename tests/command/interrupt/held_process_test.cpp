#include "interrupt/held_process.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include "tests/command/interrupt/pidfd_kernel.h"

namespace {

TEST(HeldProcess, HasItsNumberAsLongAsItExistsAlsoWhenItRunsAsAnotherUser)
{
    PidfdKernel kernel;
    pidfdKernel = &kernel;
    const command::HeldProcess process(getpid());
    for (const auto& [error, hasNumber] :
         {std::pair(0, true), std::pair(EPERM, true), std::pair(ESRCH, false)}) {
        kernel.probeError = [probe = error](int /*descriptor*/) { return probe; };
        EXPECT_EQ(process.hasNumber(), hasNumber) << error;
    }
    EXPECT_EQ(kernel.denials, 2);
    pidfdKernel = nullptr;
}

} // namespace

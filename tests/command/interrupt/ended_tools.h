#ifndef TESTS_COMMAND_INTERRUPT_ENDED_TOOLS_H
#define TESTS_COMMAND_INTERRUPT_ENDED_TOOLS_H

// Include it in the one source file of a test program, see PidfdKernel.

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "interrupt/end_tools.h"
#include "tests/command/interrupt/pidfd_kernel.h"
#include "tests/command/interrupt/shell_tool.h"

/// On kernels with and without signals to process groups by pidfd.
class EndTools : public testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        kernel.signalsGroups = GetParam();
        pidfdKernel = &kernel;
    }

    void TearDown() override
    {
        pidfdKernel = nullptr;
        prctl(PR_SET_CHILD_SUBREAPER, 0);
    }

    void endTools()
    {
        stop.request();
        const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
        areGone = command::endTools(stop);
        passed = std::chrono::steady_clock::now() - begin;
    }

    PidfdKernel kernel;
    command::StopRequest stop;
    std::chrono::steady_clock::duration passed{};
    bool areGone = false;
};

#endif

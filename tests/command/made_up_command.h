#ifndef TESTS_COMMAND_MADE_UP_COMMAND_H
#define TESTS_COMMAND_MADE_UP_COMMAND_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/options.h"
#include "commands.h"
#include "kernel/machine.h"
#include "tests/command/output/captured_output.h"
#include "tests/support/made_up_machine.h"

/// What a subcommand printed, and its status.
struct Answered {
    std::string output;
    std::string errors;
    int status;
};

/// Runs subcommands on a made-up machine, in the test's process.
class MadeUpCommand : public testing::Test {
protected:
    using Subcommand = std::function<int(const command::Options&, command::OutputStream&,
                                         const command::Machine&)>;

    /// `arguments` begin with the subcommand's name.
    Answered answer(const Subcommand& run, const std::vector<std::string>& arguments) const;

    /// What the subcommand prints where colours are shown.
    std::string coloured(const Subcommand& run, const std::vector<std::string>& arguments) const;

    MadeUpMachine m_made;
};

#endif

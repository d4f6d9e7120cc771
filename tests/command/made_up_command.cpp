#include "tests/command/made_up_command.h"

#include <variant>

#include "commands.h"
#include "kernel/machine.h"
#include "tests/command/output/captured_output.h"

using command::Machine;
using command::Options;

namespace {

Options parsed(const std::vector<std::string>& arguments)
{
    return std::get<Options>(command::parseOptions(arguments, command::subcommands()));
}

} // namespace

Answered MadeUpCommand::answer(const Subcommand& run,
                               const std::vector<std::string>& arguments) const
{
    const Options options = parsed(arguments);
    CapturedOutput output;
    testing::internal::CaptureStderr();
    try {
        const int status = run(options, output.stream(), Machine(m_made.roots()));
        return {output.text(), testing::internal::GetCapturedStderr(), status};
    } catch (...) {
        testing::internal::GetCapturedStderr();
        throw;
    }
}

std::string MadeUpCommand::coloured(const Subcommand& run,
                                    const std::vector<std::string>& arguments) const
{
    const Options options = parsed(arguments);
    CapturedOutput output;
    output.stream().setColored(true);
    run(options, output.stream(), Machine(m_made.roots()));
    return output.text();
}

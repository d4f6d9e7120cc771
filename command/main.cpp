#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <unistd.h>

#include "cli/color.h"
#include "cli/complaint.h"
#include "cli/options.h"
#include "cli/usage_error.h"
#include "commands.h"

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

/// SIGPIPE ends the command quietly when its reader goes away, also when the parent process ignores
/// or blocks the signal.
void restoreBrokenPipeSignal()
{
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

int answer(const command::Options& options, command::OutputStream& output)
{
    constexpr std::chrono::milliseconds forever{-1};
    try {
        return options.subcommand->run(options, output);
    } catch (const command::UsageError& error) {
        throw command::UsageError(error.what(), options.subcommand->name);
    } catch (...) {
        output.end(forever);
        throw;
    }
}

int run(const std::vector<std::string>& arguments)
{
    command::OutputStream output(STDOUT_FILENO);
    const auto wanted = command::parseOptions(arguments, command::subcommands(), output.width());
    if (const auto* options = std::get_if<command::Options>(&wanted)) {
        output.setColored(command::showsColors(options->color, output.isTerminal()));
        return answer(*options, output);
    }
    output.write(std::get<command::Information>(wanted));
    output.flush();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    restoreBrokenPipeSignal();
    std::setlocale(LC_CTYPE, "");
    try {
        return run({argv + 1, argv + argc});
    } catch (const command::UsageError& error) {
        command::complain(error.what());
        const std::string subcommand = error.subcommand().empty() ? "" : error.subcommand() + ' ';
        std::fprintf(stderr, "Try 'dmpclaim %s--help' for more information.\n", subcommand.c_str());
        return badUsage;
    } catch (const std::exception& error) {
        command::complain(error.what());
        return failed;
    }
}

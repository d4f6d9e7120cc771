// The tools of a simulated KoVM volume manager, for machines that have none: `kodmpadm` and
// `kodisk`, one program that acts by the name it is called by. It keeps all its data in one state
// file, described in README.md. KOVM_SIMULATOR_STATE names the file; the default is
// /run/kovm-simulator/state.json. Beside it are its lock, .lock, and the log of all calls, .log.
//
// Exit status: 0 the call succeeded, 1 it failed as a real tool would fail, 2 its arguments are
// wrong, 70 it is not among the recorded calls, 78 the simulator cannot do its own work.
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>

#include <unistd.h>

#include "call_log.h"
#include "commands.h"
#include "endings.h"
#include "error.h"
#include "pdk/zepdk/printable_text.h"
#include "shaping.h"
#include "state_file.h"
#include "subcommands.h"
#include "write_all.h"

namespace simulator {

namespace {

constexpr char defaultState[] = "/run/kovm-simulator/state.json";
constexpr int cannotWork = 78;

/// Throws an Error when the text cannot be written.
void print(int descriptor, std::string_view text)
{
    if (!writeAll(descriptor, text))
        failWithErrno("cannot write to descriptor", std::to_string(descriptor));
}

void flood(unsigned mebibytes, const std::string& line)
{
    if (mebibytes == 0)
        return;
    std::string block;
    while (block.size() < 1024UL * 1024)
        block += line + "\n";
    block.resize(1024UL * 1024);
    for (unsigned i = 0; i < mebibytes; ++i)
        print(STDOUT_FILENO, block);
}

/// The message as one line, with control characters escaped: names must not steer the terminal.
std::string complaint(const Command& command, const std::string& message)
{
    std::string line;
    appendPrintable(line, command.program + ": " + message);
    return line + "\n";
}

void printAnswer(const Command& command, const Answer& answer, const std::vector<Spoiler>& spoilers)
{
    if (!answer.message.empty())
        print(STDERR_FILENO, complaint(command, answer.message) + answer.usage);
    Print spoilt;
    spoilt.lines = answer.lines;
    for (const Spoiler& spoil : spoilers)
        spoil(spoilt);
    print(STDOUT_FILENO, spoilt.text());
    flood(spoilt.floodMib, answer.lines.empty() ? "" : answer.lines.back());
}

/// Counts the call and returns its fault.
Fault takeCall(State& state, const Command& command)
{
    if (command.arguments.empty() || !isSubcommand(command.arguments[0]))
        return {};
    const std::string& subcommand = command.arguments[0];
    return findFault(state.faults, subcommand, ++state.calls[subcommand]);
}

Answer answerCall(State& state, const Command& command)
{
    return state.replay ? replay(*state.replay, state.replayed, command) : perform(state, command);
}

int run(const Command& command)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread.
    const char* named = std::getenv("KOVM_SIMULATOR_STATE");
    const std::string path = named != nullptr ? named : defaultState;
    logCall(path + ".log", command);
    const StateFile file(path);
    const Fault fault = file.change([&](State& state) { return takeCall(state, command); });
    if (!fault.standardError.empty())
        print(STDERR_FILENO, fault.standardError + "\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(fault.delayMilliseconds));
    if (!fault.late)
        end(fault.ending);
    const Answer answer = file.change([&](State& state) { return answerCall(state, command); });
    printAnswer(command, answer, fault.spoilers);
    end(fault.ending);
    end(endingOf(answer.result));
    return cannotWork;
}

} // namespace

} // namespace simulator

int main(int argc, char** argv)
{
    simulator::Command command{program_invocation_short_name, {}};
    if (argc > 1)
        command.arguments.assign(argv + 1, argv + argc);
    try {
        return simulator::run(command);
    } catch (const std::exception& error) {
        std::cerr << simulator::complaint(command, std::string("simulator: ") + error.what());
        return simulator::cannotWork;
    }
}

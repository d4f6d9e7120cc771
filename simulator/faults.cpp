#include "faults.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <limits>

#include "subcommands.h"

namespace simulator {

namespace {

struct NamedSignal {
    const char* name;
    int number;
};

constexpr std::array signals = {
    NamedSignal{"ABRT", SIGABRT}, NamedSignal{"BUS", SIGBUS},   NamedSignal{"FPE", SIGFPE},
    NamedSignal{"HUP", SIGHUP},   NamedSignal{"ILL", SIGILL},   NamedSignal{"INT", SIGINT},
    NamedSignal{"KILL", SIGKILL}, NamedSignal{"PIPE", SIGPIPE}, NamedSignal{"QUIT", SIGQUIT},
    NamedSignal{"SEGV", SIGSEGV}, NamedSignal{"TERM", SIGTERM}};

int readSignal(Fields& fields)
{
    if (!fields.has("signal"))
        return 0;
    const std::string name = fields.text("signal");
    for (const NamedSignal& signal : signals) {
        if (name == signal.name)
            return signal.number;
    }
    fields.refuse("signal", "is no signal that ends a process, such as KILL");
}

Ending readEnding(Fields& fields)
{
    Ending ending;
    if (fields.has("exit"))
        ending.status = static_cast<int>(fields.number("exit", 0, 0, 255));
    ending.signal = readSignal(fields);
    ending.hang = fields.flag("hang");
    if ((ending.status ? 1 : 0) + (ending.signal != 0 ? 1 : 0) + (ending.hang ? 1 : 0) > 1)
        fields.refuse("exit, signal or hang:", "a call ends in one way only");
    return ending;
}

/// "call" names one call; "from", "to" and "every" a range.
void readCalls(Fields& fields, Fault& fault)
{
    const unsigned call = fields.number("call", 0, 1);
    const bool one = call != 0;
    fault.from = fields.number("from", one ? call : 1, 1);
    fault.to = fields.number("to", one ? call : std::numeric_limits<unsigned>::max(), 1);
    fault.every = fields.number("every", 1, 1);
    if (one && (fields.has("from") || fields.has("to") || fields.has("every")))
        fields.refuse("call", "stands alone, without from, to and every");
}

} // namespace

bool Fault::matches(const std::string& called, unsigned number) const
{
    return called == subcommand && number >= from && number <= to && number % every == 0;
}

Fault readFault(Fields fields)
{
    Fault fault;
    fault.subcommand = fields.text("subcommand");
    if (!isSubcommand(fault.subcommand))
        fields.refuse("subcommand", "is no subcommand of kodmpadm or kodisk");
    readCalls(fields, fault);
    fault.delayMilliseconds = fields.number("delay_ms", 0);
    fault.standardError = fields.text("stderr", "");
    fault.spoilers = readSpoilers(fields);
    fault.ending = readEnding(fields);
    fault.late = fields.flag("late");
    if (fault.late && !fault.ending.ends())
        fields.refuse("late", "needs exit, signal or hang");
    fields.finish();
    return fault;
}

Fault findFault(const std::vector<Fault>& faults, const std::string& subcommand, unsigned number)
{
    const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
        return fault.matches(subcommand, number);
    });
    return found == faults.end() ? Fault{} : *found;
}

} // namespace simulator

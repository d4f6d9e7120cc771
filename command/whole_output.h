#ifndef WHOLE_OUTPUT_H
#define WHOLE_OUTPUT_H

#include <optional>

#include "cli/options.h"
#include "interrupt/interrupt.h"
#include "output/output_stream.h"

namespace command {

/// Makes the output whole when a signal interrupts it: closes a JSON document, or ends behind a
/// line of JSON. Does nothing for other forms, where a signal ends the process at once.
///
/// For subcommands that start no tool.
class WholeOutput {
public:
    WholeOutput(const Options& options, OutputStream& output)
    {
        if (!isJson(options.form))
            return;
        m_interrupt.emplace(m_stop, [&output] { output.end(); });
        m_interrupt->skipPatience();
    }

private:
    StopRequest m_stop;
    std::optional<Interrupt> m_interrupt;
};

} // namespace command

#endif

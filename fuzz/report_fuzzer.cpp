// Any bytes as a recording that a state file of the simulator names, such as a report of a support
// case: it is refused with a reason, or its commands are answered as they were recorded.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include "require.h"
#include "simulator/endings.h"
#include "simulator/error.h"
#include "simulator/state.h"
#include "tests/support/temporary_folder.h"

namespace {

/// The state that replays these bytes.
simulator::State stateReplaying(const std::uint8_t* data, std::size_t size)
{
    static const TemporaryFolder folder;
    std::ofstream(folder.file("report.json"))
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return simulator::readState({{"replay", "report.json"}}, folder.file(""));
}

/// Several records of one command are its answers in turn.
void checkAnswers(simulator::State state)
{
    for (const simulator::Record& record : *state.replay) {
        const simulator::Answer answer =
            simulator::replay(*state.replay, state.replayed, record.command);
        const bool isRepeated = answer.message.empty();
        FUZZ_REQUIRE(isRepeated == simulator::endingOf(record.result).ends());
        FUZZ_REQUIRE(!isRepeated ||
                     (answer.result == record.result && answer.lines == record.output));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    simulator::State state;
    try {
        state = stateReplaying(data, size);
    } catch (const simulator::Error& refused) {
        FUZZ_REQUIRE(*refused.what() != '\0');
        return 0;
    }
    checkAnswers(std::move(state));
    return 0;
}

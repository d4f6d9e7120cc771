// Any bytes as a state file of the simulator: it is refused with a reason, or read; what is written
// back is read as the same, and so is the state that calls of the tools leave.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "require.h"
#include "simulator/commands.h"
#include "simulator/error.h"
#include "simulator/json_file.h"
#include "simulator/json_text.h"
#include "simulator/state.h"

namespace {

/// A file in memory with a path.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
    {
        FUZZ_REQUIRE(write(m_descriptor, data, size) == static_cast<ssize_t>(size));
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor = memfd_create("state", MFD_CLOEXEC);
};

using simulator::Json;

simulator::State read(const Json& document)
{
    return simulator::readState(document, "/nonexistent");
}

/// The state is read as it was written. Returns it as it is written.
Json writtenBack(const simulator::State& state, Json document)
{
    simulator::writeState(state, document);
    Json again = document;
    simulator::writeState(read(document), again);
    FUZZ_REQUIRE(again == document);
    return document;
}

/// Calls that find, remove and discover all nodes of the state.
std::vector<simulator::Command> callsFor(const simulator::State& state)
{
    std::vector<simulator::Command> calls;
    for (const simulator::Array& array : state.arrays) {
        for (const simulator::Node& node : array.nodes) {
            calls.push_back({"kodmpadm", {"getsubpaths", "dmpnodename=" + node.name}});
            for (const simulator::Path& path : node.paths)
                calls.push_back({"kodmpadm", {"getdmpnode", "nodename=" + path.name}});
            calls.push_back({"kodisk", {"rm", node.name}});
        }
    }
    calls.push_back({"kodisk", {"scandisks"}});
    return calls;
}

/// Each call succeeds, or finds no such disk or node. Its fault may cut what it prints.
void call(simulator::State& state, const simulator::Command& command)
{
    const std::string& name = command.arguments.front();
    const simulator::Fault fault = simulator::findFault(state.faults, name, ++state.calls[name]);
    const simulator::Answer answer = simulator::perform(state, command);
    FUZZ_REQUIRE(answer.result == (answer.message.empty() ? 0 : 1));
    simulator::Print print;
    print.lines = answer.lines;
    for (const simulator::Spoiler& spoil : fault.spoilers)
        spoil(print);
    FUZZ_REQUIRE(!print.cut || print.text().size() <= *print.cut);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const MemoryFile file(data, size);
    Json document;
    simulator::State state;
    try {
        document = simulator::readJsonFile(file.path());
        FUZZ_REQUIRE(Json::parse(simulator::jsonText(document)) == document);
        state = read(document);
    } catch (const simulator::Error& refused) {
        FUZZ_REQUIRE(*refused.what() != '\0');
        return 0;
    }
    document = writtenBack(state, std::move(document));
    for (const simulator::Command& command : callsFor(state))
        call(state, command);
    writtenBack(state, std::move(document));
    return 0;
}

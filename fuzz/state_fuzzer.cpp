// Any bytes as a state file of the simulator, which records of a support case may come from: it is
// refused with a reason, or read; and what is written back is read as the same.
#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "require.h"
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const MemoryFile file(data, size);
    try {
        simulator::Json document = simulator::readJsonFile(file.path());
        FUZZ_REQUIRE(simulator::Json::parse(simulator::jsonText(document)) == document);
        const simulator::State state = simulator::readState(document, "/nonexistent");
        simulator::writeState(state, document);
        simulator::Json again = document;
        simulator::writeState(simulator::readState(document, "/nonexistent"), again);
        FUZZ_REQUIRE(again == document);
    } catch (const simulator::Error& refused) {
        FUZZ_REQUIRE(*refused.what() != '\0');
    }
    return 0;
}

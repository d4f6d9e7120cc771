#include "kovm/pause.h"

#include <unistd.h>

namespace kovm {

void pauseFor(std::chrono::seconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    std::chrono::seconds left = time;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): safe in the C library used here
    while (left.count() > 0 && sleep(static_cast<unsigned int>(left.count())) > 0)
        // Measured, because sleep() rounds what it returns down.
        left = std::chrono::ceil<std::chrono::seconds>(end - std::chrono::steady_clock::now());
}

} // namespace kovm

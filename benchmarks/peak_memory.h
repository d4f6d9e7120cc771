#ifndef BENCHMARKS_PEAK_MEMORY_H
#define BENCHMARKS_PEAK_MEMORY_H

#include <stdexcept>
#include <string>

#include <sys/resource.h>

/// Throws std::runtime_error when this process has needed more memory, the benchmark's own
/// included.
inline void expectPeakMemory(long mebibytes)
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    if (usage.ru_maxrss > mebibytes << 10)
        throw std::runtime_error("the benchmark needs " + std::to_string(usage.ru_maxrss) +
                                 " KiB of memory, more than " + std::to_string(mebibytes) + " MiB");
}

#endif

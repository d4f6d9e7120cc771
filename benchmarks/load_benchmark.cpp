// What it costs a host to load the library, beside an empty one with the same dependencies.
#include <cstdio>
#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/comparison.h"

namespace {

void writeLoadTime(const std::string& library, int pipe)
{
    const double begin = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
    const bool isLoaded = dlopen(library.c_str(), RTLD_NOW) != nullptr;
    const double seconds = isLoaded ? secondsOf(CLOCK_PROCESS_CPUTIME_ID) - begin : -1;
    _exit(write(pipe, &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
}

/// Loads the library in a new process: libraries may stay in memory once they are loaded.
double loadTime(const std::string& library)
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("cannot make a pipe");
    const pid_t pid = fork();
    if (pid == 0)
        writeLoadTime(library, ends[1]);
    close(ends[1]);
    double seconds = -1;
    const bool isRead = read(ends[0], &seconds, sizeof seconds) == sizeof seconds;
    close(ends[0]);
    waitpid(pid, nullptr, 0);
    if (!isRead || seconds < 0)
        throw std::runtime_error("cannot load " + library);
    return seconds;
}

Measure loading(const std::string& library)
{
    return [=](std::size_t times) {
        double seconds = 0;
        for (; times > 0; --times)
            seconds += loadTime(library);
        return seconds;
    };
}

} // namespace

int main()
{
    compare("load the library",
            {{"ours", loading(OUR_LIBRARY)}, {"empty library", loading(EMPTY_LIBRARY)}});
}

// Loaded into a program with LD_PRELOAD: SIGALRM interrupts it every 100 microseconds, and no call
// restarts by itself. Programs that it starts are left alone.
#include <csignal>
#include <cstdlib>

#include <sys/time.h>

namespace {

void ignore(int /*signal*/) {}

[[gnu::constructor]] void start()
{
    unsetenv("LD_PRELOAD"); // NOLINT(concurrency-mt-unsafe): no thread is there yet
    struct sigaction action {};
    action.sa_handler = ignore;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval interval{{0, 100}, {0, 100}};
    setitimer(ITIMER_REAL, &interval, nullptr);
}

} // namespace

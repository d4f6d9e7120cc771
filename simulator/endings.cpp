#include "endings.h"

#include <algorithm>
#include <array>
#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr int killedBySignal = 1000;
constexpr int deadlinePassed = 1100;

/// The other signals stop a process, or let it go on.
bool endsProcess(int signal)
{
    constexpr std::array others = {SIGCHLD, SIGCONT, SIGSTOP, SIGTSTP,
                                   SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};
    return signal > 0 && signal <= SIGRTMAX &&
           std::find(others.begin(), others.end(), signal) == others.end();
}

/// Whatever the caller has blocked or ignored, and whatever a runtime library has installed.
void dieBy(int signal)
{
    prctl(PR_SET_DUMPABLE, 0);
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    (void)raise(signal);
}

} // namespace

Ending endingOf(int result)
{
    Ending ending;
    if (result >= 0 && result <= 255)
        ending.status = result;
    else if (endsProcess(result - killedBySignal))
        ending.signal = result - killedBySignal;
    else
        ending.hang = result == deadlinePassed;
    return ending;
}

void end(const Ending& ending)
{
    if (ending.status)
        _exit(*ending.status);
    if (ending.signal != 0)
        dieBy(ending.signal);
    while (ending.hang)
        pause();
}

} // namespace simulator

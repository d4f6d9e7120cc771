#include "endings.h"

#include <algorithm>
#include <array>
#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

#include "pdk/zecmn/ending.h"

namespace simulator {

namespace {

/// Whether the default action of the signal ends the process. The others stop it, continue it or
/// are ignored.
bool endsProcess(int signal)
{
    constexpr std::array others = {SIGCHLD, SIGCONT, SIGSTOP, SIGTSTP,
                                   SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};
    return signal <= SIGRTMAX && std::find(others.begin(), others.end(), signal) == others.end();
}

/// Dies even if the caller has blocked or ignored the signal or a runtime library handles it.
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
    using Kind = koze_pdk_4_4::runner::Ending::Kind;
    const auto reported = koze_pdk_4_4::runner::endingOf(result);
    Ending ending;
    if (reported.kind == Kind::exited && reported.number <= 255)
        ending.status = reported.number;
    else if (reported.kind == Kind::killed && endsProcess(reported.number))
        ending.signal = reported.number;
    else
        ending.hang = reported.kind == Kind::deadlinePassed;
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

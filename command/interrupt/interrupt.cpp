#include "interrupt/interrupt.h"

#include <new>
#include <string_view>
#include <utility>

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include "interrupt/end_tools.h"
#include "interrupt/start_thread.h"

namespace command {

namespace {

/// Wakes the signal thread. sigwait returns lower numbers first, so a pending interrupt wins.
int wakeSignal()
{
    return SIGRTMIN;
}

bool isIgnored(int signal)
{
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

sigset_t takenSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, wakeSignal());
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        if (!isIgnored(signal))
            sigaddset(&signals, signal);
    }
    return signals;
}

/// Waits at most 100 ms for a standard error that takes no output. Uses write(2): another thread
/// may hold the lock of stderr.
void reportTools()
{
    constexpr std::string_view line = "dmpclaim: a tool may still run: it did not end, or could "
                                      "not be found; see 'ps -C kodmpadm,kodisk'\n";
    pollfd errors{STDERR_FILENO, POLLOUT, 0};
    if (poll(&errors, 1, 100) != 1)
        return;
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}

} // namespace

Interrupt::Interrupt(StopRequest& stop, std::function<void()> afterTools)
    : m_stop(stop), m_afterTools(std::move(afterTools)), m_taken(takenSignals())
{
    sigset_t blocked = m_taken;
    sigaddset(&blocked, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
    try {
        m_thread = startThread([this] { awaitSignal(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        throw;
    }
}

Interrupt::~Interrupt()
{
    finish();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void Interrupt::finish()
{
    if (!m_thread.joinable())
        return;
    m_finished = true;
    kill(getpid(), wakeSignal()); // not pthread_kill: sigwait returns a thread's signals first
    m_thread.join();
}

void Interrupt::endTools() const
{
    m_stop.request();
    bool areGone = false;
    try {
        areGone = command::endTools(m_stop);
    } catch (const std::bad_alloc&) {
        areGone = false; // no memory to find them
    }
    m_afterTools(); // after the tools, because it may hang on a terminal that takes no output
    if (!areGone)
        reportTools();
}

void Interrupt::awaitSignal()
{
    int signal = 0;
    while (sigwait(&m_taken, &signal) != 0 || signal == wakeSignal()) {
        if (m_finished)
            return;
    }
    end(signal);
}

void Interrupt::end(int signal)
{
    endTools();
    _exit(128 + signal);
}

} // namespace command

#include "interrupt.h"

#include <utility>

#include <pthread.h>
#include <unistd.h>

#include "end_tools.h"
#include "start_thread.h"

namespace {

/// Wakes the thread that waits for signals, which takes those of lower numbers first.
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

} // namespace

namespace command {

Interrupt::Interrupt(StopRequest& stop, std::function<void()> beforeEnd)
    : m_stop(stop), m_beforeEnd(std::move(beforeEnd)), m_earlierChildren(childProcesses()),
      m_taken(takenSignals())
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
    kill(getpid(), wakeSignal()); // a thread's own signal would overtake the process's
    m_thread.join();
}

void Interrupt::endTools() const
{
    m_stop.request();
    command::endTools(m_stop, m_earlierChildren);
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
    m_stop.request();
    m_beforeEnd(); // what endTools says has the terminal's line to itself
    endTools();
    _exit(128 + signal);
}

} // namespace command

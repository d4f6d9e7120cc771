#include "interrupt/interrupt.h"

#include <algorithm>
#include <chrono>
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

using Clock = std::chrono::steady_clock;

/// How long an interrupted command may take to write what it has. Its output may hang.
constexpr std::chrono::seconds patience{1};

/// Wakes the signal thread. A wait returns lower numbers first, so a pending interrupt wins.
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

Interrupt::Interrupt(StopRequest& stop, std::function<void()> afterTools, TimeLimit limit)
    : m_stop(stop), m_afterTools(std::move(afterTools)), m_taken(takenSignals()), m_limit(limit)
{
    sigset_t blocked = m_taken;
    sigaddset(&blocked, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
    try {
        m_thread = startThread([this] { awaitSignals(); });
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
    {
        const std::lock_guard lock(m_mutex);
        m_hasFinished = true;
        m_finished.notify_one();
    }
    kill(getpid(), wakeSignal()); // not pthread_kill: a wait returns a thread's signals first
    m_thread.join();
}

void Interrupt::skipPatience()
{
    const std::lock_guard lock(m_mutex);
    m_isPatient = false;
}

void Interrupt::endTools() const
{
    endTools(StopReason::interrupt);
}

void Interrupt::endTools(StopReason reason) const
{
    m_stop.request(reason);
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

void Interrupt::awaitSignals()
{
    for (;;) {
        const int signal = nextSignal();
        if (signal > 0 && signal != wakeSignal())
            end(signal);
        if (signal == wakeSignal() && hasFinished())
            return;
        if (m_limit && Clock::now() >= *m_limit) {
            m_limit.reset();
            endTools(StopReason::timeLimit);
        }
    }
}

/// Waits for a signal. Returns -1 when the time limit passes first, or the process was stopped and
/// continued.
int Interrupt::nextSignal() const
{
    using namespace std::chrono;
    if (!m_limit)
        return sigwaitinfo(&m_taken, nullptr);
    const nanoseconds left = std::max(nanoseconds(*m_limit - Clock::now()), nanoseconds(0));
    const auto wholeSeconds = duration_cast<seconds>(left);
    const timespec time{wholeSeconds.count(), (left - wholeSeconds).count()};
    return sigtimedwait(&m_taken, nullptr, &time);
}

bool Interrupt::hasFinished()
{
    const std::lock_guard lock(m_mutex);
    return m_hasFinished;
}

void Interrupt::end(int signal)
{
    endTools(StopReason::interrupt);
    std::unique_lock lock(m_mutex);
    m_finished.wait_for(lock, patience, [this] { return m_hasFinished || !m_isPatient; });
    _exit(128 + signal);
}

} // namespace command

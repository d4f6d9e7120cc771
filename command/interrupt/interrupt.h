#ifndef INTERRUPT_INTERRUPT_H
#define INTERRUPT_INTERRUPT_H

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

#include "interrupt/stop_request.h"

namespace command {

/// Ends the process at once when the user interrupts it, and leaves no tool running, which a
/// signal from the terminal alone would: tools have process groups of their own.
///
/// While an object lives, SIGINT, SIGTERM, SIGHUP and SIGQUIT make the request `stop`, end the
/// tools and end the process with status 130, 143, 129 or 131. A signal that the process was
/// started to ignore stays ignored. Threads that are started meanwhile hold these signals back. So
/// does this thread, and SIGPIPE, which ends the process only when the object is gone.
///
/// REQUIRES: tools are started by threads that begin after the object; endTools knows them by that.
class Interrupt {
public:
    /// `afterTools` runs after endTools has ended the tools, in the thread that takes the signals
    /// or in the caller's. Throws what startThread throws; the signals then go through as before.
    Interrupt(StopRequest& stop, std::function<void()> afterTools);
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Does what `finish` does and lets the signals through again.
    ~Interrupt();

    /// Takes no more signals. Does not return when one came before.
    void finish();

    /// Makes the request and ends the tools, as a signal does; says on standard error when one may
    /// be left.
    void endTools() const;

private:
    void awaitSignal();
    [[noreturn]] void end(int signal);

    StopRequest& m_stop;
    std::function<void()> m_afterTools;
    sigset_t m_before{};
    sigset_t m_taken{};
    std::atomic<bool> m_finished{false};
    std::thread m_thread;
};

} // namespace command

#endif

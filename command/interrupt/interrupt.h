#ifndef INTERRUPT_INTERRUPT_H
#define INTERRUPT_INTERRUPT_H

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

#include "interrupt/stop_request.h"

namespace command {

/// Ends the tools and exits the process when the user interrupts it. A signal from the terminal
/// alone would leave the tools running: they have process groups of their own.
///
/// While an object lives, a thread of its own waits for SIGINT, SIGTERM, SIGHUP and SIGQUIT. This
/// signal thread requests `stop`, ends the tools and exits with status 130, 143, 129 or 131. A
/// signal that was ignored when the process started stays ignored.
///
/// The constructor blocks these signals and SIGPIPE in its thread, and threads that are started
/// later inherit the signal mask. A SIGPIPE ends the process only once the destructor
/// has unblocked it.
///
/// REQUIRES: tools are started by threads that begin after the constructor. endTools tells them
/// from other children by that.
class Interrupt {
public:
    /// endTools calls `afterTools` when the tools are ended, in the signal thread or in the
    /// caller's. Throws what startThread throws, with the signal mask as before.
    Interrupt(StopRequest& stop, std::function<void()> afterTools);
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Calls `finish` and restores the signal mask.
    ~Interrupt();

    /// Ends the signal thread. Does not return when a signal came before: the signal thread exits
    /// the process.
    void finish();

    /// Requests `stop` and ends the tools, as a signal does. Reports on standard error when a tool
    /// may still run.
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

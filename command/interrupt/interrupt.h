#ifndef INTERRUPT_INTERRUPT_H
#define INTERRUPT_INTERRUPT_H

#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <thread>

#include "interrupt/stop_request.h"
#include "interrupt/time_limit.h"

namespace command {

/// Ends the tools when the user interrupts the command, or when its time limit passes. A signal
/// from the terminal alone would leave the tools running: they have process groups of their own.
///
/// While an object lives, a thread of its own waits for SIGINT, SIGTERM, SIGHUP and SIGQUIT. After
/// a signal, this signal thread requests `stop`, ends the tools, gives the caller a second to write
/// what it has and to call `finish`, and exits with status 130, 143, 129 or 131. A signal that was
/// ignored when the process started stays ignored. After the time limit, the signal thread requests
/// `stop` and ends the tools; then it waits for signals as before.
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
    Interrupt(StopRequest& stop, std::function<void()> afterTools, TimeLimit limit = {});
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Calls `finish` and restores the signal mask.
    ~Interrupt();

    /// Ends the signal thread. Does not return when a signal came before: the signal thread exits
    /// the process.
    void finish();

    /// Says that nothing is left to write after an interrupt: a signal does not wait for `finish`.
    /// Safe between threads.
    void skipPatience();

    /// Requests `stop` and ends the tools, as a signal does. Reports on standard error when a tool
    /// may still run.
    void endTools() const;

private:
    void awaitSignals();
    int nextSignal() const;
    bool hasFinished();
    void endTools(StopReason reason) const;
    [[noreturn]] void end(int signal);

    StopRequest& m_stop;
    std::function<void()> m_afterTools;
    sigset_t m_before{};
    sigset_t m_taken{};
    TimeLimit m_limit; // of the signal thread; nothing once it has passed
    std::mutex m_mutex;
    std::condition_variable m_finished;
    bool m_hasFinished = false;
    bool m_isPatient = true;
    std::thread m_thread;
};

} // namespace command

#endif

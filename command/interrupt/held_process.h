#ifndef INTERRUPT_HELD_PROCESS_H
#define INTERRUPT_HELD_PROCESS_H

#include <sys/types.h>

namespace command {

/// A process that is held by a pidfd. Its number may be reused once its parent has reaped it; the
/// pidfd never refers to another process.
class HeldProcess {
public:
    /// Opens a pidfd for the process that has this number now. The caller then checks that it is
    /// the wanted process.
    explicit HeldProcess(pid_t id);
    HeldProcess(HeldProcess&& other) noexcept;
    HeldProcess(const HeldProcess&) = delete;
    HeldProcess& operator=(HeldProcess&&) = delete;
    HeldProcess& operator=(const HeldProcess&) = delete;
    ~HeldProcess();

    pid_t id() const { return m_id; }

    /// False when there is no such process, or the kernel has no pidfds (before 5.3).
    bool isHeld() const { return m_descriptor >= 0; }

    /// Whether it has not been reaped, so that `id` is still its number.
    bool hasNumber() const;

    /// Whether it runs or is stopped. A process that has ended keeps its number until it is reaped.
    bool isAlive() const;

    /// Whether the process group that it leads, or led, has members. Always false before kernel
    /// 6.9.
    bool groupHasMembers() const;

    void send(int signal) const;

private:
    pid_t m_id;
    int m_descriptor;
};

} // namespace command

#endif

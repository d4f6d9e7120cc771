#ifndef EXEC_KERNEL_H
#define EXEC_KERNEL_H

#include <atomic>
#include <chrono>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "exec_test.h"

/// What the kernel of a test lacks, and which calls reached it.
struct Kernel {
    std::map<long, int> deniedCalls; // number and errno's value
    bool hasPidfd = true;
    bool waitsByPidfd = true;
    bool waitsByNumber = true;
    bool interruptsWaits = false; // each second one
    int waits = 0;
    int exitInformationAfter = 0; // ioctls that do not find it yet
    int missesProcess = 0;        // how often an ioctl of a pidfd answers ESRCH
    bool keepsExitInformation = true;
    bool sends = true; // false: signals are accepted and lost
    long hangsIn = 0;  // the number of a call
    bool clones = true;
    bool maps = true;    // whether shared mappings succeed
    int groupSignal = 0; // reaches the child while it is in the host's group
    std::optional<std::chrono::nanoseconds> frozen; // the time; only waiting moves it
    int joinError = 0;                              // of joining a session keyring
    int keyError = 0; // of the other operations of keyctl, when joining fails

    id_t lowestPidfd = std::numeric_limits<id_t>::max(); // that waitid was given
    std::atomic<int> asked{0};                           // how often the kernel denied something
    std::atomic<int> foldersOpened{0};                   // by a child that shares this memory
    std::vector<int> pauses;                             // in milliseconds
    std::vector<std::pair<pid_t, int>> killed;
    pid_t sibling = 0; // -1: forked at the next clone; then its number
};

/// Base of the tests on such a kernel. exec_kernel.cpp replaces the system calls of the test
/// program that links it.
class ExecKernel : public ExecTest {
protected:
    ExecKernel();
    ~ExecKernel() override;

    void expectDenied() const { EXPECT_GT(m_kernel.asked, 0); }

    /// Ends a program that the kernel could not end.
    void killRemainingPrograms();

    Kernel m_kernel;
};

#endif

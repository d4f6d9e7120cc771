#ifndef MEMORY_ATTACKS_H
#define MEMORY_ATTACKS_H

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <string>

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "pdk/zecmn/descriptor.h"

constexpr uid_t nobody = 65534;
/// The secret's value.
constexpr std::uint64_t magic = 0x7365'6372'6574'2121;

/// What processes of the account must not read.
inline volatile std::uint64_t secret = magic;

/// What the attacks achieved, in memory that the test shares with its processes.
struct Board {
    std::atomic<long> attempts{0};
    std::atomic<long> opened{0}; // how many memory files of processes could be opened
    std::atomic<long> wonByFile{0};
    std::atomic<long> wonByCopying{0};
    std::atomic<long> wonByTracing{0};
    std::atomic<bool> holdsChildren{false};
    std::atomic<pid_t> held{0}; // a process that waits to be attacked
};

inline Board* board = nullptr;

/// Reads and overwrites the secret through the process's memory file.
inline void attackByFile(pid_t process)
{
    ++board->attempts;
    const std::string path = "/proc/" + std::to_string(process) + "/mem";
    const koze_pdk_4_4::Descriptor memory(open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!memory.isOpen())
        return;
    ++board->opened;
    const auto at = static_cast<off_t>(reinterpret_cast<std::uintptr_t>(&secret));
    std::uint64_t found = 0;
    const std::uint64_t other = 1;
    if (pread(memory.number(), &found, sizeof found, at) == sizeof found && found == magic) {
        ++board->wonByFile;
        EXPECT_EQ(pwrite(memory.number(), &other, sizeof other, at), sizeof other);
    }
}

inline void attackByCopying(pid_t process)
{
    ++board->attempts;
    std::uint64_t found = 0;
    const iovec mine{&found, sizeof found};
    const iovec theirs{const_cast<std::uint64_t*>(&secret), sizeof secret};
    if (process_vm_readv(process, &mine, 1, &theirs, 1, 0) == sizeof found && found == magic)
        ++board->wonByCopying;
}

inline void attackByTracing(pid_t process)
{
    ++board->attempts;
    if (ptrace(PTRACE_SEIZE, process, nullptr, nullptr) == 0)
        ++board->wonByTracing;
}

inline bool switchToNobody()
{
    return setgroups(0, nullptr) == 0 && setresgid(nobody, nobody, nobody) == 0 &&
           setresuid(nobody, nobody, nobody) == 0;
}

/// A process of the account that repeats `work`.
class Nobody {
public:
    explicit Nobody(void (*work)()) : m_process(fork())
    {
        if (m_process != 0)
            return;
        if (!switchToNobody())
            _exit(1);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            work();
    }
    Nobody(const Nobody&) = delete;
    Nobody& operator=(const Nobody&) = delete;
    ~Nobody()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process;
};

#endif

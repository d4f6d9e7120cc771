#include "pdk/zecmn/process_group.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <limits>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "pdk/zecmn/descriptor.h"

using koze_pdk_4_4::runner::groupRuns;

namespace {

bool hasProc = true;
bool readsProc = true;

/// When the processes that /proc lists end, relative to the reading of their state.
enum class Vanish { never, beforeOpening, beforeReading };
Vanish vanish = Vanish::never;

/// What is read of the state of every process; empty for its real state.
std::string madeUpState;

} // namespace

extern "C" DIR* opendir(const char* name)
{
    static auto* const real = reinterpret_cast<decltype(&opendir)>(dlsym(RTLD_NEXT, "opendir"));
    return hasProc ? real(name) : nullptr;
}

extern "C" dirent* readdir(DIR* folder)
{
    static auto* const real = reinterpret_cast<decltype(&readdir)>(dlsym(RTLD_NEXT, "readdir"));
    if (readsProc)
        return real(folder);
    errno = EIO;
    return nullptr;
}

extern "C" int openat(int folder, const char* path, int flags, ...)
{
    if (vanish == Vanish::beforeOpening) {
        errno = ENOENT;
        return -1;
    }
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, 0));
}

extern "C" ssize_t read(int descriptor, void* bytes, std::size_t size)
{
    if (vanish == Vanish::beforeReading) {
        errno = ESRCH;
        return -1;
    }
    if (!madeUpState.empty())
        return static_cast<ssize_t>(madeUpState.copy(static_cast<char*>(bytes), size));
    return syscall(SYS_read, descriptor, bytes, size);
}

namespace {

/// A child in a group, of its own for group 0, that waits for a signal; reaped with its owner.
class Member {
public:
    explicit Member(pid_t group, const char* name = "member")
    {
        koze_pdk_4_4::runner::Pipe pipe = koze_pdk_4_4::runner::openPipe();
        m_pid = fork();
        if (m_pid == 0) {
            setpgid(0, group);
            prctl(PR_SET_NAME, name);
            pipe.writeEnd.reset();
            for (;;)
                pause();
        }
        pipe.writeEnd.reset();
        char none = 0;
        EXPECT_EQ(read(pipe.readEnd.number(), &none, 1), 0); // until the child is ready
    }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;
    ~Member()
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }

    pid_t pid() const { return m_pid; }

    /// Kills the child and leaves it a zombie.
    void end() const
    {
        kill(m_pid, SIGKILL);
        siginfo_t info;
        EXPECT_EQ(waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT), 0);
    }

private:
    pid_t m_pid;
};

TEST(ProcessGroup, RunsUntilItsLastMemberHasEnded)
{
    const Member leader(0);
    const Member other(leader.pid());
    EXPECT_TRUE(groupRuns(leader.pid()));
    leader.end();
    EXPECT_TRUE(groupRuns(leader.pid()));
    other.end();
    EXPECT_FALSE(groupRuns(leader.pid()));
}

TEST(ProcessGroup, RunsWhileItIsStopped)
{
    const Member leader(0);
    kill(leader.pid(), SIGSTOP);
    waitpid(leader.pid(), nullptr, WUNTRACED);
    EXPECT_TRUE(groupRuns(leader.pid()));
}

TEST(ProcessGroup, ThatNobodyIsInDoesNotRun)
{
    pid_t gone = 0;
    {
        const Member leader(0);
        gone = leader.pid();
    }
    EXPECT_FALSE(groupRuns(gone));
}

TEST(ProcessGroup, RunsWhateverItsMembersAreCalled)
{
    for (const char* name : {") Z 1 1", "a) Z 1", "(", ")", "a b", "\n"}) {
        const Member leader(0, name);
        EXPECT_TRUE(groupRuns(leader.pid())) << name;
    }
}

TEST(ProcessGroup, DoesNotRunWhereItsMembersVanishWhileTheyAreLookedAt)
{
    const Member leader(0);
    for (const Vanish when : {Vanish::beforeOpening, Vanish::beforeReading}) {
        vanish = when;
        EXPECT_FALSE(groupRuns(leader.pid()));
        vanish = Vanish::never;
        EXPECT_TRUE(groupRuns(leader.pid()));
    }
}

TEST(ProcessGroup, RunsInTheStatesThatAProcessRunsIn)
{
    const Member leader(0);
    const std::string group = std::to_string(leader.pid());
    const auto runsWith = [&](const std::string& state) {
        madeUpState = state;
        const bool runs = groupRuns(leader.pid());
        madeUpState.clear();
        return runs;
    };
    for (const char* state : {"R", "S", "D", "T", "t", "I"})
        EXPECT_TRUE(runsWith("1 (a) " + (state + (" 1 " + group)) + " 1")) << state;
    for (const char* state : {"Z", "X"})
        EXPECT_FALSE(runsWith("1 (a) " + (state + (" 1 " + group)) + " 1")) << state;
    EXPECT_FALSE(runsWith("1 (a) S 1 " + std::to_string(leader.pid() + 1) + " " + group));
    EXPECT_FALSE(runsWith("1 (a S 1 " + group));
    EXPECT_FALSE(runsWith("1 (a) S 1 "));
    EXPECT_FALSE(runsWith("1 (a)"));
}

TEST(ProcessGroup, RunsAsLongAsNobodyCanTell)
{
    const Member leader(0);
    leader.end();
    hasProc = false;
    EXPECT_TRUE(groupRuns(leader.pid()));
    EXPECT_FALSE(groupRuns(std::numeric_limits<pid_t>::max())); // no such number
    hasProc = true;
    readsProc = false;
    EXPECT_TRUE(groupRuns(leader.pid()));
    readsProc = true;
    EXPECT_FALSE(groupRuns(leader.pid()));
}

} // namespace

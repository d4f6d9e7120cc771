// Each system call of a run fails once with each error, those of the started child included.
#include <csignal>
#include <exception>
#include <iostream>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "exec_test.h"
#include "pdk/include/czeexecpipe.h"
#include "pdk/zecmn/run.h"
#include "tests/support/namespaces.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/sanitized.h"
#include "tests/support/system_call_faults.h"

namespace {

using koze_pdk_4_4::CZeExecPipeBase;

/// What a run makes, but for the memory and the clocks of the C library.
CallErrors callsOfARun()
{
    CallErrors errors =
        errorsOf({SYS_chdir,        SYS_clone,          SYS_close,           SYS_close_range,
                  SYS_dup3,         SYS_execve,         SYS_fcntl,           SYS_futex,
                  SYS_getdents64,   SYS_ioctl,          SYS_keyctl,          SYS_kill,
                  SYS_lseek,        SYS_memfd_create,   SYS_openat,          SYS_pidfd_send_signal,
                  SYS_pipe2,        SYS_poll,           SYS_prctl,           SYS_read,
                  SYS_rt_sigaction, SYS_rt_sigprocmask, SYS_rt_sigtimedwait, SYS_setgroups,
                  SYS_setresgid,    SYS_setresuid,      SYS_setsid,          SYS_waitid,
                  SYS_write});
    if (isSanitized)
        errors.erase(SYS_pipe2); // the sanitizer's own check of types makes pipes
    return errors;
}

class ExecSystemCalls : public ExecTest {
protected:
    void SetUp() override
    {
        if (!mayFailCalls())
            endWithoutNamespaces();
    }

    /// Runs the command with each fault. Every run ends with one of the `results`, or says in an
    /// exception why the command cannot be run, and leaves nothing. A command
    /// that succeeds prints "a".
    void failIn(const std::function<int(Lines&)>& run, const std::set<int>& results,
                const CallErrors& errors, unsigned int leastFaults)
    {
        int result = -1;
        Lines lines;
        std::string reason;
        const unsigned int faults =
            failEachCall({errors,
                          [&] {
                              m_start = std::chrono::steady_clock::now();
                              try {
                                  result = run(lines);
                              } catch (const std::exception& failure) {
                                  reason = failure.what();
                              }
                          },
                          [&](const CallFault& fault) {
                              if (reason.empty() && results.count(result) == 0)
                                  return "ends with " + std::to_string(result);
                              if (result == 0 && lines != Lines({"a"}) && !losesOutput(fault))
                                  return std::string("loses output");
                              return left(fault);
                          }});
        std::cout << faults << " faults\n";
        EXPECT_GE(faults, isSanitized ? 1 : leastFaults); // under sanitizers fewer calls fail
    }

private:
    /// Whether the output cannot be read.
    static bool losesOutput(const CallFault& fault)
    {
        return fault.call == SYS_read || fault.call == SYS_ioctl;
    }

    /// What a run left behind. A call that was not made has not closed its descriptor, nor ended or
    /// reaped its process.
    std::string left(const CallFault& fault) const
    {
        if (fault.call == SYS_waitid || isKillGivenUp())
            waitpid(-1, nullptr, 0);
        if (waitpid(-1, nullptr, WNOHANG) != -1)
            return "leaves a child";
        const std::size_t unclosed = fault.call == SYS_close ? 1 : 0;
        if (openDescriptors().size() > m_before.size() + unclosed)
            return "leaves a descriptor";
        if (fault.call != SYS_rt_sigprocmask && signalState() != m_signals)
            return "changes signals";
        if (fault.call == SYS_kill)
            endProcesses();
        if (isKillGivenUp())
            awaitNobodyLeft();
        if (!processesWith(mark()).empty())
            return "leaves a process";
        return {};
    }

    /// Whether the run may have waited a second in vain for what it killed, on a busy machine.
    bool isKillGivenUp() const
    {
        return std::chrono::steady_clock::now() - m_start >= std::chrono::seconds(1);
    }

    /// Ends what a call that was not made was to end, which the next run would find.
    void endProcesses() const
    {
        for (const std::string& process : processesWith(mark()))
            kill(std::stoi(process), SIGKILL);
        awaitNobodyLeft();
    }

    std::chrono::steady_clock::time_point m_start;
    std::set<std::string> m_before = openDescriptors();
    std::vector<std::string> m_signals = signalState();
};

TEST_F(ExecSystemCalls, FailOneByOneWhereTheCommandSucceeds)
{
    const auto run = [this](Lines& lines) {
        return koze_pdk_4_4::CZeExecPipePosix(1).Exec(commandLine("print 0 1 a\\n 2 b\\n"), lines,
                                                      "/", 60, "", mark(), "input");
    };
    failIn(run, {0, CZeExecPipeBase::statusUnknown}, callsOfARun(), 260);
}

TEST_F(ExecSystemCalls, FailOneByOneUnderAnotherAccount)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may take on another account";
    const auto run = [this](Lines& lines) {
        return koze_pdk_4_4::CZeExecPipePosix(2).Exec(commandLine("print 0 1 a\\n"), lines, "/", 60,
                                                      "root", mark(), "");
    };
    CallErrors errors = callsOfARun();
    errors.erase(SYS_futex); // the C library's lookup of an account aborts when these fail
    errors.erase(SYS_rt_sigprocmask);
    failIn(run, {0, CZeExecPipeBase::statusUnknown}, errors, 300);
}

TEST_F(ExecSystemCalls, FailOneByOneWhereTheProgramIsEnded)
{
    // It is ended when its first line is too long. A limit of time might pass anywhere.
    const auto run = [this](Lines& lines) {
        using namespace koze_pdk_4_4::runner;
        Program program;
        program.arguments = splitCommand(commandLine("ignore_term"));
        program.environment = {mark()};
        return koze_pdk_4_4::runner::run(
            program, "", {std::chrono::seconds(60), std::chrono::milliseconds(5), 1000, 4}, lines,
            lines);
    };
    CallErrors errors = callsOfARun();
    errors.erase(SYS_read);   // a line that cannot be read is not too long
    errors.erase(SYS_openat); // one for each process of the machine, while the group ends
    errors.erase(SYS_close);
    failIn(run, {CZeExecPipeBase::boundExceeded}, errors, 150);
}

} // namespace

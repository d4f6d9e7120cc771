#ifndef TESTS_SUPPORT_NAMESPACES_H
#define TESTS_SUPPORT_NAMESPACES_H

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Called where private namespaces are not permitted: skips the test, or fails it in CI, where they
/// must be permitted.
inline void endWithoutNamespaces()
{
    if (std::getenv("CI") != nullptr)
        FAIL() << "private mount namespaces are not permitted, and CI must have them";
    GTEST_SKIP() << "private mount namespaces are not permitted";
}

/// Runs functions in child processes with namespaces of their own for processes and mounts.
class Namespaces {
public:
    /// What is mounted at /proc for the function.
    enum class Proc { ofItsProcesses, ofTheHost, missing };

    static bool arePermitted()
    {
        return run(Proc::ofItsProcesses, [] {}) != notPermitted;
    }

    /// Runs the function as the first process of the namespace: when it ends, the kernel kills the
    /// others. Its failed expectations fail this test.
    static void expectIn(Proc proc, const std::function<void()>& function)
    {
        EXPECT_EQ(run(proc, function), 0);
    }

private:
    static constexpr int notPermitted = 77;
    static constexpr unsigned int limitSeconds = 60;

    static int run(Proc proc, const std::function<void()>& function)
    {
        const pid_t child = fork();
        if (child == 0) {
            alarm(limitSeconds);
            const pid_t first = enter() ? fork() : -1;
            if (first == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                _exit(showProc(proc) ? statusOf(function) : notPermitted);
            }
            _exit(first < 0 ? notPermitted : await(first));
        }
        return await(child);
    }

    static bool enter()
    {
        constexpr int flags = CLONE_NEWPID | CLONE_NEWNS;
        if (unshare(flags) == 0)
            return true;
        const std::string user = std::to_string(geteuid());
        if (unshare(CLONE_NEWUSER | flags) != 0)
            return false;
        return static_cast<bool>(std::ofstream("/proc/self/uid_map") << "0 " + user + " 1");
    }

    static bool showProc(Proc proc)
    {
        const char* type = proc == Proc::missing ? "tmpfs" : "proc";
        return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               (proc == Proc::ofTheHost || mount("none", "/proc", type, 0, nullptr) == 0);
    }

    static int statusOf(const std::function<void()>& function)
    {
        try {
            function();
        } catch (const std::exception& failure) {
            ADD_FAILURE() << failure.what();
        }
        std::cout.flush();
        std::fflush(stdout);
        return testing::Test::HasFailure() ? 1 : 0;
    }

    static int await(pid_t child)
    {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR)
            continue;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

#endif

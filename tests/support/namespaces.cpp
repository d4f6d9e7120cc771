#include "tests/support/namespaces.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int notPermitted = 77;
constexpr unsigned int limitSeconds = 60;

bool enter()
{
    constexpr int flags = CLONE_NEWPID | CLONE_NEWNS;
    if (unshare(flags) == 0)
        return true;
    const std::string user = std::to_string(geteuid());
    if (unshare(CLONE_NEWUSER | flags) != 0)
        return false;
    return static_cast<bool>(std::ofstream("/proc/self/uid_map") << "0 " + user + " 1");
}

bool showProc(Namespaces::Proc proc)
{
    const char* type = proc == Namespaces::Proc::missing ? "tmpfs" : "proc";
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           (proc == Namespaces::Proc::ofTheHost || mount("none", "/proc", type, 0, nullptr) == 0);
}

int statusOf(const std::function<void()>& function)
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

int await(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int run(Namespaces::Proc proc, const std::function<void()>& function)
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

} // namespace

void endWithoutNamespaces()
{
    if (std::getenv("CI") != nullptr)
        FAIL() << "private mount namespaces are not permitted, and CI must have them";
    GTEST_SKIP() << "private mount namespaces are not permitted";
}

bool Namespaces::arePermitted()
{
    return run(Proc::ofItsProcesses, [] {}) != notPermitted;
}

void Namespaces::expectIn(Proc proc, const std::function<void()>& function)
{
    EXPECT_EQ(run(proc, function), 0);
}

// What another account changes in the trace file's place during the open.
#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdarg>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "append_file_test.h"

namespace {

/// Called once, after the next open for writing.
std::function<void()> afterOpen;

/// What the coarse clock shows; empty for the time.
std::optional<timespec> coarseTime;

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    if (clock == CLOCK_REALTIME_COARSE && coarseTime) {
        *time = *coarseTime;
        return 0;
    }
    return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
}

extern "C" int openat(int folder, const char* name, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const auto opened =
        static_cast<int>(syscall(SYS_openat, folder, name, flags, va_arg(arguments, mode_t)));
    va_end(arguments);
    if ((flags & O_ACCMODE) == O_WRONLY && afterOpen)
        std::exchange(afterOpen, nullptr)();
    return opened;
}

namespace {

TEST_F(InASharedFolder, WhatOthersPutThereDuringTheOpenIsRefused)
{
    inEachSharedFolder([this] {
        std::ofstream(trace) << "mine\n";
        afterOpen = [this] { giveAway(trace); };
        EXPECT_EQ(refusal(trace), foreignFile);
        EXPECT_EQ(textOf(trace), "mine\n");
    });
}

/// Puts links to the victim, FIFOs and files into `path` until the process is killed.
[[noreturn]] void plant(const std::string& path, const std::string& victim)
{
    becomeStranger();
    for (;;) {
        (void)symlink(victim.c_str(), path.c_str());
        unlink(path.c_str());
        mkfifo(path.c_str(), 0666);
        unlink(path.c_str());
        close(creat(path.c_str(), 0666));
        unlink(path.c_str());
    }
}

TEST_F(InASharedFolder, NoRaceIsWonByAnotherAccount)
{
    chmod(shared.c_str(), 0777);
    chmod(folder.file("").c_str(), 0755);
    const pid_t attacker = fork();
    if (attacker == 0)
        plant(trace, victim);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(400);
    std::map<std::string, int> outcomes;
    while (std::chrono::steady_clock::now() < end)
        ++outcomes[refusal(trace)];
    kill(attacker, SIGKILL);
    int status = 0;
    waitpid(attacker, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_TRUE(isUntouched());
    EXPECT_GT(outcomes[foreignLink] + outcomes[foreignFifo] + outcomes[foreignFile], 0);
}

/// Waits until the coarse clock has passed the file's last change, so that the next change gets a
/// later time.
void awaitTickAfter(const std::string& path)
{
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    timespec now{};
    do
        clock_gettime(CLOCK_REALTIME_COARSE, &now);
    while (std::pair(now.tv_sec, now.tv_nsec) <=
           std::pair(status.st_ctim.tv_sec, status.st_ctim.tv_nsec));
}

TEST_F(AppendFile, ANameThatIsTakenAwayDuringTheOpenCounts)
{
    std::ofstream(trace) << "untouched\n";
    std::filesystem::last_write_time(trace, {});
    awaitTickAfter(trace);
    afterOpen = [this] {
        std::filesystem::rename(trace, folder.file("elsewhere"));
        std::filesystem::rename(folder.file("elsewhere"), trace);
    };
    EXPECT_EQ(refusal(trace), severalNames);
    EXPECT_FALSE(std::exchange(afterOpen, nullptr)) << "it was not called";
    EXPECT_EQ(textOf(trace), "untouched\n");
}

TEST_F(AppendFile, ANameThatIsTakenAwayInTheSameTickCounts)
{
    std::ofstream(trace) << "untouched\n";
    std::filesystem::last_write_time(trace, {});
    struct stat status {};
    ASSERT_EQ(stat(trace.c_str(), &status), 0);
    coarseTime = status.st_ctim;
    EXPECT_EQ(refusal(trace), severalNames);
    ++coarseTime->tv_sec;
    EXPECT_EQ(refusal(trace), "");
    coarseTime.reset();
}

TEST_F(AppendFile, AWriteDuringTheOpenDoesNotCount)
{
    afterOpen = [this] { std::ofstream(trace, std::ios::app) << "other\n"; };
    EXPECT_EQ(refusal(trace), "");
    EXPECT_EQ(linesOf(trace).size(), 2U);
}

} // namespace

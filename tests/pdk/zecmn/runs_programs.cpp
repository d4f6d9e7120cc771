#include "runs_programs.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "tests/support/open_descriptors.h"

std::string commandLine(const std::string& command)
{
    return command.empty() || command.front() == '/' ? command : PROGRAMS "/" + command;
}

std::string contentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> processesWith(const std::string& variable)
{
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string environment = '\0' + contentsOf(entry.path() / "environ");
        if (environment.find('\0' + variable + '\0') != std::string::npos)
            found.push_back(entry.path().filename().string());
    }
    return found;
}

std::vector<std::string> signalState()
{
    std::vector<std::string> state;
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    for (int signal = 1; signal < 65; ++signal) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (sigismember(&blocked, signal) == 1)
            state.push_back(std::to_string(signal) + " blocked");
        if (action.sa_handler != SIG_DFL)
            state.push_back(std::to_string(signal) + " handled");
    }
    return state;
}

std::chrono::nanoseconds threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

RunsPrograms::RunsPrograms()
    : m_mark("RUNNER_TEST=" + std::to_string(getpid()) + "_" +
             std::to_string(std::chrono::steady_clock::now().time_since_epoch().count())),
      m_descriptors(openDescriptors()), m_signals(signalState()),
      m_directory(std::filesystem::current_path()), m_dumpable(prctl(PR_GET_DUMPABLE))
{}

void RunsPrograms::TearDown()
{
    awaitNobodyLeft();
    EXPECT_EQ(openDescriptors(), m_descriptors);
    EXPECT_EQ(signalState(), m_signals);
    EXPECT_EQ(std::filesystem::current_path(), m_directory);
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), m_dumpable);
    expectNoChild();
}

void RunsPrograms::expectNobodyLeft() const
{
    EXPECT_EQ(processesWith(m_mark), std::vector<std::string>());
}

void RunsPrograms::awaitNobodyLeft() const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!processesWith(m_mark).empty() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    expectNobodyLeft();
}

void RunsPrograms::expectNoChild()
{
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

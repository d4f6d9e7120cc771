#include "benchmarks/runners.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include <ace/Process.h>
#include <boost/process.hpp>
#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <sched.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"

namespace {

const std::string underTimeout = "/usr/bin/timeout -k 1 1 ";

void expect(bool success)
{
    if (!success)
        throw std::runtime_error("a program did not run as it should");
}

Lines pieces(std::string_view text, char separator)
{
    Lines result;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        result.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return result;
}

std::vector<char*> pointersTo(Lines& words)
{
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Reads a pipe to its end, and cuts what comes out into lines.
Lines linesFrom(int pipe)
{
    std::string text;
    std::vector<char> piece(std::size_t{64} << 10);
    for (ssize_t size = 0; (size = read(pipe, piece.data(), piece.size())) > 0;)
        text.append(piece.data(), static_cast<std::size_t>(size));
    close(pipe);
    return pieces(text, '\n');
}

namespace ours {

Lines run(const std::string& command)
{
    koze_pdk_4_4::CZeExecPipePosix runner(1);
    Lines lines;
    expect(runner.Exec(command, lines, "", 600, "", "", "") == 0);
    return lines;
}

void runForSecond(const std::string& command)
{
    Lines lines;
    koze_pdk_4_4::CZeExecPipePosix(1).Exec(command, lines, "", 1, "", "", "");
}

} // namespace ours

namespace bare {

pid_t spawn(const std::string& command, int output)
{
    Lines words = pieces(command, ' ');
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t pid = 0;
    expect(posix_spawn(&pid, words[0].c_str(), &actions, nullptr, pointersTo(words).data(),
                       environ) == 0);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

Lines run(const std::string& command)
{
    std::array<int, 2> ends{};
    expect(pipe2(ends.data(), O_CLOEXEC) == 0);
    const pid_t pid = spawn(command, ends[1]);
    close(ends[1]);
    Lines lines = linesFrom(ends[0]);
    int status = 0;
    expect(waitpid(pid, &status, 0) == pid && status == 0);
    return lines;
}

void runForSecond(const std::string& command)
{
    const pid_t pid = spawn(command, STDERR_FILENO);
    const auto pidfd = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    pollfd end{pidfd, POLLIN, 0};
    if (poll(&end, 1, 1000) == 0)
        kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    close(pidfd);
}

} // namespace bare

namespace shell {

Lines run(const std::string& command)
{
    std::FILE* output = popen(command.c_str(), "re");
    expect(output != nullptr);
    Lines lines;
    char* line = nullptr;
    std::size_t room = 0;
    for (ssize_t size = 0; (size = getline(&line, &room, output)) > 0;)
        lines.emplace_back(line, static_cast<std::size_t>(size - 1));
    std::free(line);
    expect(pclose(output) == 0);
    return lines;
}

void runForSecond(const std::string& command)
{
    pclose(popen(("exec " + underTimeout + command).c_str(), "re"));
}

} // namespace shell

namespace glib {

int spawn(const std::string& command, char** output)
{
    Lines words = pieces(command, ' ');
    int status = 0;
    expect(g_spawn_sync(nullptr, pointersTo(words).data(), nullptr, G_SPAWN_DEFAULT, nullptr,
                        nullptr, output, nullptr, &status, nullptr) == TRUE);
    return status;
}

Lines run(const std::string& command)
{
    char* output = nullptr;
    expect(spawn(command, &output) == 0);
    Lines lines = pieces(output, '\n');
    g_free(output);
    return lines;
}

void runForSecond(const std::string& command)
{
    spawn(underTimeout + command, nullptr);
}

} // namespace glib

namespace boost_process {

Lines run(const std::string& command)
{
    boost::process::ipstream output;
    boost::process::child child(command, boost::process::std_out > output);
    Lines lines;
    for (std::string line; std::getline(output, line);)
        lines.push_back(line);
    child.wait();
    expect(child.exit_code() == 0);
    return lines;
}

void runForSecond(const std::string& command)
{
    boost::process::group group;
    boost::process::child child(command, group);
    if (!child.wait_for(std::chrono::seconds(1)))
        group.terminate();
    child.wait();
}

} // namespace boost_process

namespace ace {

Lines run(const std::string& command)
{
    std::array<int, 2> ends{};
    expect(pipe2(ends.data(), O_CLOEXEC) == 0);
    ACE_Process_Options options;
    options.set_handles(ACE_INVALID_HANDLE, ends[1], ACE_INVALID_HANDLE);
    options.command_line("%s", command.c_str());
    ACE_Process process;
    expect(process.spawn(options) != ACE_INVALID_PID);
    options.release_handles();
    close(ends[1]);
    Lines lines = linesFrom(ends[0]);
    ACE_exitcode status = 0;
    expect(process.wait(&status) > 0 && status == 0);
    return lines;
}

void runForSecond(const std::string& command)
{
    ACE_Process_Options options;
    options.command_line("%s", command.c_str());
    ACE_Process process;
    process.spawn(options);
    if (process.wait(ACE_Time_Value(1)) == 0)
        process.terminate();
    process.wait();
}

} // namespace ace

} // namespace

const std::vector<Runner>& runners()
{
    static const std::vector<Runner> all{
        {"ours", ours::run, ours::runForSecond},
        {"posix_spawn", bare::run, bare::runForSecond},
        {"popen", shell::run, shell::runForSecond},
        {"g_spawn_sync", glib::run, glib::runForSecond},
        {"Boost.Process", boost_process::run, boost_process::runForSecond},
        {"ACE_Process", ace::run, ace::runForSecond},
    };
    return all;
}

void keepOtherLoadAway()
{
    const sched_param lowest{sched_get_priority_min(SCHED_RR)};
    sched_setscheduler(0, SCHED_RR, &lowest);
}

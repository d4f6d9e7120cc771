#ifndef PROCESS_H
#define PROCESS_H

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// How a process ended, and what it wrote to the pipes.
struct Result {
    int status; // of exit; 128 and the signal's number when one ended it
    std::string output;
    std::string errors;
};

/// A child with /dev/null as its input and pipes from its other standard streams. Every wait has a
/// deadline: std::runtime_error is thrown when it passes. Killed with its owner.
class Process {
public:
    explicit Process(std::vector<std::string> arguments)
    {
        std::vector<char*> pointers;
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        const int outputWriter = openPipe(m_streams[0], actions, STDOUT_FILENO);
        const int errorsWriter = openPipe(m_streams[1], actions, STDERR_FILENO);
        const int error =
            posix_spawn(&m_id, pointers[0], &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(outputWriter);
        close(errorsWriter);
        if (error != 0)
            throw std::system_error(error, std::generic_category(), arguments[0]);
    }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    ~Process()
    {
        if (m_id > 0) {
            signal(SIGKILL);
            waitpid(m_id, nullptr, 0);
        }
        for (const pollfd& stream : m_streams)
            close(stream.fd);
    }

    pid_t id() const { return m_id; }

    void signal(int number) const { kill(m_id, number); }

    /// Whether it ends before so many milliseconds have passed.
    bool endsWithin(int milliseconds) const
    {
        pollfd end{static_cast<int>(syscall(SYS_pidfd_open, m_id, 0)), POLLIN, 0};
        const int ended = poll(&end, 1, milliseconds);
        close(end.fd);
        return ended == 1;
    }

    /// The next line of the child's standard output, with its end.
    std::string receiveLine()
    {
        while (m_result.output.find('\n') == std::string::npos) {
            if (!receive())
                throw std::runtime_error("the process ended its output");
        }
        const std::size_t end = m_result.output.find('\n') + 1;
        std::string line = m_result.output.substr(0, end);
        m_result.output.erase(0, end);
        return line;
    }

    /// Waits for the child.
    Result finish()
    {
        while (receive())
            continue;
        int status = 0;
        waitpid(std::exchange(m_id, -1), &status, 0);
        m_result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return m_result;
    }

private:
    static constexpr int deadlineMilliseconds = 60'000;

    static int openPipe(pollfd& stream, posix_spawn_file_actions_t& actions, int target)
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "pipe2");
        stream = {ends[0], POLLIN, 0};
        posix_spawn_file_actions_adddup2(&actions, ends[1], target);
        return ends[1];
    }

    /// Reads what there is; false at the end of both streams.
    bool receive()
    {
        if (m_streams[0].fd < 0 && m_streams[1].fd < 0)
            return false;
        if (poll(m_streams.data(), m_streams.size(), deadlineMilliseconds) == 0)
            throw std::runtime_error("the process takes too long");
        receive(m_streams[0], m_result.output);
        receive(m_streams[1], m_result.errors);
        return true;
    }

    static void receive(pollfd& from, std::string& to)
    {
        if (from.fd < 0 || from.revents == 0)
            return;
        std::array<char, 65536> block{};
        const ssize_t size = read(from.fd, block.data(), block.size());
        if (size > 0)
            to.append(block.data(), static_cast<std::size_t>(size));
        else
            close(std::exchange(from.fd, -1));
    }

    pid_t m_id = -1;
    std::array<pollfd, 2> m_streams{};
    Result m_result{};
};

#endif

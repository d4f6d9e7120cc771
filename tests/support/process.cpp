#include "tests/support/process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using Streams = std::array<int, 3>;

void setSignals(posix_spawnattr_t& attributes, const Setting& setting)
{
    sigset_t none;
    sigset_t brokenPipe;
    sigemptyset(&none);
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, setting.ignoredBrokenPipe ? &none : &brokenPipe);
    posix_spawnattr_setsigmask(&attributes, setting.blockedBrokenPipe ? &brokenPipe : &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

pid_t spawn(std::vector<std::string> arguments, const Setting& setting, const Streams& streams)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int target = 0; target < 3; ++target)
        posix_spawn_file_actions_adddup2(&actions, streams.at(static_cast<std::size_t>(target)),
                                         target);
    if (setting.closedOutput)
        posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    setSignals(attributes, setting);
    std::vector<std::string> environment = setting.environment;
    for (char** variable = environ; *variable != nullptr; ++variable)
        environment.emplace_back(*variable);
    pid_t child = -1;
    const int error = posix_spawnp(&child, arguments.front().c_str(), &actions, &attributes,
                                   pointers(arguments).data(), pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), arguments.front());
    return child;
}

/// Waits until one of the descriptors is ready; ignores negative ones.
std::vector<pollfd> await(std::vector<pollfd> descriptors, Clock::time_point deadline)
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const int wait = std::max(0, static_cast<int>(left.count()));
    if (poll(descriptors.data(), descriptors.size(), wait) == 0)
        throw std::runtime_error("the process takes too long");
    return descriptors;
}

/// Reads once; false, with the descriptor closed, at the end.
bool receive(Descriptor& from, std::string& to)
{
    std::array<char, 65536> block;
    const ssize_t size = read(from.number(), block.data(), block.size());
    if (size > 0)
        to.append(block.data(), static_cast<std::size_t>(size));
    else
        from.close();
    return size > 0;
}

} // namespace

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe2");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Descriptor fileHolding(std::string_view text)
{
    Descriptor file(memfd_create("text", MFD_CLOEXEC));
    if (write(file.number(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::system_error(errno, std::generic_category(), "memfd");
    lseek(file.number(), 0, SEEK_SET);
    return file;
}

Process::Process(const std::vector<std::string>& arguments, const Setting& setting)
{
    std::signal(SIGPIPE, SIG_IGN);
    Pipe input = makePipe();
    Pipe output = makePipe();
    Pipe errors = makePipe();
    const int childInput = setting.input < 0 ? input.reader.number() : setting.input;
    const int childOutput = setting.output < 0 ? output.writer.number() : setting.output;
    m_pid = spawn(arguments, setting, {childInput, childOutput, errors.writer.number()});
    m_input = std::move(input.writer);
    m_output = std::move(output.reader);
    m_errors = std::move(errors.reader);
}

Process::~Process()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

void Process::signal(int number) const
{
    kill(m_pid, number);
}

bool Process::endsWithin(int milliseconds) const
{
    const Descriptor child(static_cast<int>(syscall(SYS_pidfd_open, m_pid, 0)));
    pollfd end{child.number(), POLLIN, 0};
    return poll(&end, 1, milliseconds) == 1;
}

void Process::send(std::string_view text)
{
    while (!text.empty()) {
        await({{m_input.number(), POLLOUT, 0}}, m_deadline);
        const ssize_t size = write(m_input.number(), text.data(), text.size());
        if (size < 0)
            return;
        text.remove_prefix(static_cast<std::size_t>(size));
    }
}

std::string Process::receiveLine()
{
    while (m_result.output.find('\n') == std::string::npos) {
        await({{m_output.number(), POLLIN, 0}}, m_deadline);
        if (!receive(m_output, m_result.output))
            throw std::runtime_error("the process ended its output");
    }
    const std::size_t end = m_result.output.find('\n') + 1;
    std::string line = m_result.output.substr(0, end);
    m_result.output.erase(0, end);
    return line;
}

Result Process::finish(std::string_view input)
{
    fcntl(m_input.number(), F_SETFL, O_NONBLOCK);
    while (m_input.number() >= 0 || m_output.number() >= 0 || m_errors.number() >= 0) {
        if (m_input.number() >= 0 && input.empty())
            m_input.close();
        exchange(input);
    }
    reap();
    return m_result;
}

void Process::exchange(std::string_view& input)
{
    const std::vector<pollfd> ready = await({{m_input.number(), POLLOUT, 0},
                                             {m_output.number(), POLLIN, 0},
                                             {m_errors.number(), POLLIN, 0}},
                                            m_deadline);
    if (ready[0].revents != 0) {
        const ssize_t size = write(m_input.number(), input.data(), input.size());
        input.remove_prefix(size < 0 ? input.size() : static_cast<std::size_t>(size));
    }
    if (ready[1].revents != 0)
        receive(m_output, m_result.output);
    if (ready[2].revents != 0)
        receive(m_errors, m_result.errors);
}

void Process::reap()
{
    int status = 0;
    rusage usage{};
    wait4(std::exchange(m_pid, -1), &status, 0, &usage);
    m_result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    m_result.peakKilobytes = usage.ru_maxrss;
}

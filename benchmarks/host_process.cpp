#include "benchmarks/host_process.h"

#include <stdexcept>
#include <utility>

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Request {
    std::size_t number;
    std::size_t times;
};

} // namespace

HostProcess::HostProcess(const std::function<void()>& prepare, std::vector<Measure> measures)
    : m_measures(std::move(measures))
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0 || (m_pid = fork()) < 0)
        throw std::runtime_error("cannot make a process");
    m_socket = ends[m_pid == 0 ? 1 : 0];
    close(ends[m_pid == 0 ? 0 : 1]);
    if (m_pid == 0) {
        prepare();
        serve();
    }
}

HostProcess::~HostProcess()
{
    close(m_socket);
    waitpid(m_pid, nullptr, 0);
}

Measure HostProcess::measure(std::size_t number) const
{
    return [this, number](std::size_t times) {
        const Request request{number, times};
        double seconds = 0;
        if (write(m_socket, &request, sizeof request) != sizeof request ||
            read(m_socket, &seconds, sizeof seconds) != sizeof seconds)
            throw std::runtime_error("a process of its own has ended");
        return seconds;
    };
}

/// Answers until the other end is closed.
void HostProcess::serve() const
{
    Request request{};
    while (read(m_socket, &request, sizeof request) == sizeof request) {
        const double seconds = m_measures[request.number](request.times);
        if (write(m_socket, &seconds, sizeof seconds) != sizeof seconds)
            break;
    }
    _exit(0);
}

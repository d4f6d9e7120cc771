#include "tests/command/interrupt/shell_tool.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pdk/include/czeexecpipe.h"
#include "tests/support/descriptor.h"
#include "tests/support/temporary_folder.h"

namespace {

pid_t receiveId(const Descriptor& ready)
{
    char line[32] = "";
    pollfd event{ready.number(), POLLIN, 0};
    if (poll(&event, 1, 10000) != 1 || read(ready.number(), line, sizeof line - 1) <= 0)
        throw std::runtime_error("the tool does not start");
    return std::stoi(line);
}

} // namespace

bool isSessionGone(pid_t wanted)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string id;
        std::string name;
        std::string state;
        pid_t parent = 0;
        pid_t group = 0;
        pid_t session = 0;
        if (file >> id >> name >> state >> parent >> group >> session && session == wanted &&
            state != "Z")
            return false;
    }
    return true;
}

ShellTool::ShellTool(command::StopRequest& stop, const std::string& script)
{
    const TemporaryFolder folder;
    const std::string fifo = folder.file("ready");
    if (mkfifo(fifo.c_str(), 0600) != 0)
        throw std::system_error(errno, std::generic_category(), "mkfifo");
    const Descriptor ready = openFile(fifo.c_str(), O_RDWR);
    m_thread =
        std::thread([this, &stop, input = "ready() { echo $$ >" + fifo + "; }\n" + script + "\n"] {
            const command::RunningTool running(stop);
            std::vector<std::string> output;
            koze_pdk_4_4::CZeExecPipePosix runner(1);
            m_status = runner.Exec("/bin/sh", output, "", 60, "", "", input);
        });
    m_id = receiveId(ready);
}

ShellTool::~ShellTool()
{
    if (!isReaped())
        kill(-m_id, SIGKILL);
    m_thread.join();
}

bool ShellTool::isSessionGone() const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (!::isSessionGone(m_id) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return ::isSessionGone(m_id);
}

int ShellTool::status() const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!isReaped() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return m_status;
}

pid_t inheritedSleeper(const std::string& starter)
{
    command::StopRequest stop;
    const TemporaryFolder folder;
    const std::string file = folder.file("id");
    const ShellTool tool(stop, starter + " sh -c 'echo $$ >" + file +
                                   "; exec sleep 100' >/dev/null & until [ -s " + file +
                                   " ]; do sleep 0.01; done; ready");
    EXPECT_EQ(tool.status(), 0);
    const pid_t sleeper = std::stoi(textOf(file));
    while (textOf("/proc/" + std::to_string(sleeper) + "/stat")
               .find(" S " + std::to_string(getpid()) + ' ') == std::string::npos)
        std::this_thread::yield();
    return sleeper;
}

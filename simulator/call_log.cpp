#include "call_log.h"

#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

#include "pdk/zepdk/printable_text.h"
#include "regular_file.h"

namespace simulator {

namespace {

std::string timeStamp()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    char seconds[32];
    const std::size_t length = std::strftime(seconds, sizeof seconds, "%Y-%m-%dT%H:%M:%S", &utc);
    const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1'000'000);
    return std::string(seconds, length) + "." + milliseconds.substr(1) + "Z";
}

std::string quoted(const std::string& argument)
{
    std::string text = "\"";
    for (const char character : argument) {
        if (character == '"' || character == '\\')
            text += '\\';
        text += character;
    }
    return text + "\"";
}

} // namespace

void logCall(const std::string& path, const Command& command)
{
    std::string called = command.program;
    for (const std::string& argument : command.arguments)
        called += " " + quoted(argument);
    std::string line = timeStamp() + " [" + std::to_string(getpid()) + "] ";
    appendPrintable(line, called);
    line += '\n';
    RegularFile(path, O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW, 0640).write(line);
}

} // namespace simulator

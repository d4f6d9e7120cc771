#include "kernel/sysfs_file.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>

#include <fcntl.h>
#include <unistd.h>

namespace command {

namespace {

/// The kernel writes no attribute longer than a page, and hands it out in one read.
std::optional<std::string> readPage(int descriptor)
{
    std::array<char, 4096> page;
    ssize_t size = 0;
    do
        size = read(descriptor, page.data(), page.size());
    while (size < 0 && errno == EINTR);
    if (size < 0)
        return std::nullopt;
    return std::string(page.data(), static_cast<std::size_t>(size));
}

} // namespace

std::optional<std::string> readAttribute(const std::string& file)
{
    // O_NONBLOCK: a FIFO in the attribute's place must not hold the command.
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return std::nullopt;
    std::optional<std::string> text = readPage(descriptor);
    close(descriptor);
    if (text)
        text->erase(text->find_last_not_of(" \n") + 1);
    return text;
}

std::optional<std::uint64_t> decimal(std::string_view text)
{
    std::uint64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::optional<std::uint64_t> readNumber(const std::string& file)
{
    const std::optional<std::string> text = readAttribute(file);
    return text ? decimal(*text) : std::nullopt;
}

std::optional<std::string> linkTarget(const std::string& file)
{
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlink(file.c_str(), target.data(), target.size());
    if (size < 0)
        return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(size));
}

} // namespace command

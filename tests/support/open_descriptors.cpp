#include "tests/support/open_descriptors.h"

#include <filesystem>
#include <system_error>

std::set<std::string> openDescriptors()
{
    std::set<std::string> numbers;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string file = std::filesystem::read_symlink(entry, error).string();
        if (file.find("/fd") == std::string::npos)
            numbers.insert(entry.path().filename().string() + " " + file);
    }
    return numbers;
}

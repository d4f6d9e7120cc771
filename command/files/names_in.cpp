#include "files/names_in.h"

#include <cerrno>
#include <memory>
#include <string_view>

#include <dirent.h>

namespace command {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// The next entry of a folder; null at its end, and when errno says why there is none.
const dirent* nextEntry(DIR* folder)
{
    errno = 0;
    return readdir(folder); // NOLINT(concurrency-mt-unsafe): one thread reads a folder
}

bool isSelfOrParent(std::string_view name)
{
    return name == "." || name == "..";
}

} // namespace

// Not std::filesystem::directory_iterator: without memory, that of g++ 12 ends the process.
std::vector<std::string> namesIn(const std::string& folder, std::error_code& error)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> stream(opendir(folder.c_str()));
    if (stream) {
        while (const dirent* entry = nextEntry(stream.get())) {
            if (!isSelfOrParent(entry->d_name))
                names.emplace_back(entry->d_name);
        }
    }
    error.assign(errno, std::generic_category());
    if (error)
        names.clear();
    return names;
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::error_code ignored;
    return namesIn(folder, ignored);
}

} // namespace command

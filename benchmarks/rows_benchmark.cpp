// What a row costs in each form: the processor time of `dmpclaim show` for many paths, against a
// minimal host that asks the library the same questions and prints the raw rows with stdio. Fails
// when the command needs more than 16 MiB of memory, or when its raw rows are not the host's.
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/comparison.h"

namespace {

constexpr long mostMemory = 16 << 10; // KiB

void expect(bool success, const char* what)
{
    if (!success)
        throw std::runtime_error(what);
}

/// Paths of all drivers and of none, disks and partitions:  /dev/sdab3
std::string pathNumber(int number)
{
    constexpr std::array<const char*, 4> prefixes{"/dev/sd", "/dev/emcpower", "/dev/mapper/mpath",
                                                  "/dev/nvme0n"};
    const auto kind = static_cast<std::size_t>(number % 5) % prefixes.size();
    std::string path = prefixes[kind];
    for (int left = number / 5; left > 0; left /= 26)
        path += static_cast<char>('a' + left % 26);
    path += 'x';
    if (number % 3 == 0)
        path += (kind == 2 ? "p" : "") + std::to_string(number % 9 + 1);
    return path;
}

/// A file in memory with so many paths, a line each.
int linesOf(int paths)
{
    const int file = memfd_create("paths", MFD_CLOEXEC);
    std::FILE* lines = fdopen(dup(file), "w");
    for (int number = 0; number < paths; ++number)
        expect(std::fprintf(lines, "%s\n", pathNumber(number).c_str()) > 0, "cannot write a path");
    expect(std::fclose(lines) == 0, "cannot write the paths");
    return file;
}

/// Runs a program with the lines as its standard input, and returns its processor time in seconds.
/// The program's memory counts from this process's own, which therefore stays small.
double processorTime(std::vector<std::string> words, int lines, int output)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    lseek(lines, 0, SEEK_SET);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, lines, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t pid = 0;
    expect(posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environ) == 0,
           "a program cannot be run");
    posix_spawn_file_actions_destroy(&actions);
    rusage usage{};
    int status = 0;
    // 64 (256 times that as wait tells it): some paths are claimed, some are not.
    expect(wait4(pid, &status, 0, &usage) == pid && (status == 0 || status == 64 << 8),
           "a program failed");
    expect(usage.ru_maxrss <= mostMemory, "a program needs more than 16 MiB");
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::vector<std::string> show(const char* form)
{
    return {DMPCLAIM_COMMAND, "show", form, "-"};
}

/// Compares two files from their beginnings.
bool isSame(int file, int other)
{
    std::array<char, 4096> block{};
    std::array<char, 4096> otherBlock{};
    off_t offset = 0;
    for (;;) {
        const ssize_t size = pread(file, block.data(), block.size(), offset);
        const ssize_t otherSize = pread(other, otherBlock.data(), otherBlock.size(), offset);
        if (size != otherSize || block != otherBlock)
            return false;
        if (size <= 0)
            return size == 0;
        offset += size;
    }
}

/// Whether the command prints the rows that the host prints.
bool isHostTheCommand(int lines)
{
    const int rows = memfd_create("rows", MFD_CLOEXEC);
    const int hostRows = memfd_create("rows", MFD_CLOEXEC);
    processorTime(show("-nr"), lines, rows);
    processorTime({ROWS_HOST}, lines, hostRows);
    const bool result = isSame(rows, hostRows);
    close(rows);
    close(hostRows);
    return result;
}

Measure running(const std::vector<std::string>& words, int lines, int output)
{
    return [=](std::size_t times) {
        double seconds = 0;
        for (; times > 0; --times)
            seconds += processorTime(words, lines, output);
        return seconds;
    };
}

} // namespace

int main()
{
    const int output = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int hundredThousand = linesOf(100'000);
    expect(isHostTheCommand(hundredThousand), "the rows of the command and of the host differ");
    compare("show - for 100000 paths",
            {{"raw", running(show("-nr"), hundredThousand, output)},
             {"table", running(show("-n"), hundredThousand, output)},
             {"JSON", running(show("-J"), hundredThousand, output)},
             {"JSON lines", running(show("--json-lines"), hundredThousand, output)},
             {"minimal host", running({ROWS_HOST}, hundredThousand, output)}});
    std::vector<Side> sizes;
    for (const int paths : {1000, 10'000, 100'000, 1'000'000})
        sizes.push_back({std::to_string(paths), running(show("-nr"), linesOf(paths), output)});
    compare("show - for so many paths", sizes);
}

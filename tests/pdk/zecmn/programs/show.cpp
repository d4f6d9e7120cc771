// show WHAT: prints something of its surroundings.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// Each open descriptor with its file.
static void descriptors()
{
    DIR* directory = opendir("/proc/self/fd");
    while (const dirent* entry = readdir(directory)) {
        const int number = std::atoi(entry->d_name);
        char file[256] = "";
        const ssize_t length = readlinkat(dirfd(directory), entry->d_name, file, sizeof file - 1);
        if (entry->d_name[0] != '.' && number != dirfd(directory))
            std::printf("%d %.*s\n", number, static_cast<int>(length), file);
    }
    closedir(directory);
}

static void environment()
{
    for (char** variable = environ; *variable != nullptr; ++variable)
        std::puts(*variable);
}

/// Each signal that is blocked, ignored or handled. The sanitizers handle some, but no others.
static void signals()
{
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    for (int signal = 1; signal < 65; ++signal) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (sigismember(&blocked, signal) == 1)
            std::printf("%d blocked\n", signal);
        if (action.sa_handler == SIG_IGN)
            std::printf("%d ignored\n", signal);
    }
}

static void identity()
{
    std::printf("%u %u %u %u\n", getuid(), geteuid(), getgid(), getegid());
    std::vector<gid_t> groups(static_cast<std::size_t>(getgroups(0, nullptr)));
    groups.resize(
        static_cast<std::size_t>(getgroups(static_cast<int>(groups.size()), groups.data())));
    std::sort(groups.begin(), groups.end());
    for (const gid_t group : groups)
        std::printf("%u\n", group);
}

static void directory()
{
    char path[4096];
    std::puts(getcwd(path, sizeof path));
}

/// All of standard input, as it is.
static void input()
{
    char text[4096];
    ssize_t size = 0;
    while ((size = read(STDIN_FILENO, text, sizeof text)) > 0)
        std::fwrite(text, 1, static_cast<std::size_t>(size), stdout);
}

int main(int, char** argv)
{
    const std::string what = argv[1];
    if (what == "descriptors")
        descriptors();
    else if (what == "environment")
        environment();
    else if (what == "signals")
        signals();
    else if (what == "identity")
        identity();
    else if (what == "input")
        input();
    else if (what == "group")
        std::puts(getpgrp() == getpid() && getsid(0) != getpid() ? "leads its group" : "does not");
    else if (what == "directory")
        directory();
    else
        return 99;
    return 0;
}

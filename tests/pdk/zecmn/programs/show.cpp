// show WHAT [NUMBER]: prints what it inherited from the host.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <linux/keyctl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/syscall.h>
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

/// All of standard input, unchanged.
static void input()
{
    char text[4096];
    ssize_t size = 0;
    while ((size = read(STDIN_FILENO, text, sizeof text)) > 0)
        std::fwrite(text, 1, static_cast<std::size_t>(size), stdout);
}

static void session()
{
    std::puts(getpgrp() == getpid() && getsid(0) == getpid() ? "leads both" : "does not");
}

/// Whether there is a terminal that controls this session.
static void terminal()
{
    std::puts(open("/dev/tty", O_RDONLY | O_CLOEXEC) >= 0 ? "a terminal" : "no terminal");
}

/// All sets of capabilities but the bounding set.
static void capabilities()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, 3, "Cap") == 0 && line.compare(0, 6, "CapBnd") != 0)
            std::puts(line.c_str());
    }
}

/// The class with its flags.
static void scheduling()
{
    std::printf("%d\n", sched_getscheduler(0));
}

/// The text of the key of that number.
static void key(const char* number)
{
    char text[100];
    const long size = syscall(SYS_keyctl, KEYCTL_READ, std::atoi(number), text, sizeof text);
    std::puts(size < 0 ? "no such key" : std::string(text, text + size).c_str());
}

int main(int, char** argv)
{
    const std::map<std::string, void (*)()> shows = {{"descriptors", descriptors},
                                                     {"environment", environment},
                                                     {"signals", signals},
                                                     {"identity", identity},
                                                     {"input", input},
                                                     {"session", session},
                                                     {"terminal", terminal},
                                                     {"capabilities", capabilities},
                                                     {"scheduling", scheduling},
                                                     {"directory", directory}};
    const std::string what = argv[1];
    if (what == "key")
        key(argv[2]);
    else
        shows.at(what)();
    return 0;
}

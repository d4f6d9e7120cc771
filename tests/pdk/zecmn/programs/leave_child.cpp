// leave_child STATUS [chatter | FILE]: prints a line and ends with that status. Its child keeps the
// streams open until they have no reader. With chatter the child goes on printing; with FILE it
// creates the file a while later.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    std::puts("leaving");
    std::fflush(stdout);
    if (fork() > 0)
        _exit(std::atoi(argv[1]));
    const bool chatters = argc > 2 && std::strcmp(argv[2], "chatter") == 0;
    if (chatters) {
        while (write(STDOUT_FILENO, "chatter\n", 8) == 8) {
        }
    }
    pollfd output{STDOUT_FILENO, 0, 0};
    poll(&output, 1, -1);
    if (argc <= 2 || chatters)
        return 0;
    usleep(50000);
    return open(argv[2], O_WRONLY | O_CREAT | O_CLOEXEC, 0600) < 0 ? 1 : 0;
}

// leave_child STATUS [chatter]: prints a line and ends with that status. A child of it stays
// behind and keeps the streams until nobody reads them any more; it may go on printing.
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <poll.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    std::puts("leaving");
    std::fflush(stdout);
    if (fork() > 0)
        _exit(std::atoi(argv[1]));
    if (argc > 2) {
        while (write(STDOUT_FILENO, "chatter\n", 8) == 8) {
        }
    }
    pollfd output{STDOUT_FILENO, 0, 0};
    poll(&output, 1, -1);
    return 0;
}

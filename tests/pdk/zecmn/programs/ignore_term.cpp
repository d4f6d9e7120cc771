// Hangs, as does its child; both ignore SIGTERM.
#include <csignal>
#include <cstdio>

#include <unistd.h>

int main()
{
    std::signal(SIGTERM, SIG_IGN);
    if (fork() > 0)
        std::puts("ignoring");
    std::fflush(stdout);
    for (;;)
        pause();
}

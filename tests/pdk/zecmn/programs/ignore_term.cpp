// Hangs, with a child that hangs too; neither heeds SIGTERM.
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

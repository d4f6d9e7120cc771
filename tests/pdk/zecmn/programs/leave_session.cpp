// Hangs until a signal ends it, with a child that does the same in a session of its own. Prints a
// line when the child is there.
#include <cstdio>

#include <unistd.h>

int main()
{
    if (fork() == 0) {
        setsid();
        std::puts("leaving");
        std::fflush(stdout);
    }
    for (;;)
        pause();
}

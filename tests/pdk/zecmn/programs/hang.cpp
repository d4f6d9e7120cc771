// Prints a line, without its end, and hangs until a signal ends it.
#include <cstdio>

#include <unistd.h>

int main()
{
    std::fputs("hanging", stdout);
    std::fflush(stdout);
    for (;;)
        pause();
}

// Prints a line, closes its streams, and ends a while later with status 7.
#include <cstdio>

#include <unistd.h>

int main()
{
    std::puts("closing");
    std::fclose(stdout);
    std::fclose(stderr);
    usleep(100000);
    _exit(7);
}

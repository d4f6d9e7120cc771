// Prints a line and stops itself.
#include <csignal>
#include <cstdio>

int main()
{
    std::puts("stopping");
    std::fflush(stdout);
    return std::raise(SIGSTOP);
}

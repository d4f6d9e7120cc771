// die_by SIGNAL: prints a line and dies by the signal of that number.
#include <csignal>
#include <cstdio>
#include <cstdlib>

int main(int, char** argv)
{
    std::puts("dying");
    std::fflush(stdout);
    return std::raise(std::atoi(argv[1]));
}

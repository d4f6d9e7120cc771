// Prints its arguments, each in brackets on a line of its own.
#include <cstdio>

int main(int, char** argv)
{
    while (*++argv != nullptr)
        std::printf("[%s]\n", *argv);
    return 0;
}

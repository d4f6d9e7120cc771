// exit_with STATUS: ends with that status.
#include <cstdlib>

int main(int, char** argv)
{
    return std::atoi(argv[1]);
}

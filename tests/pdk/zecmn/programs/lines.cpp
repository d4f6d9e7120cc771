// lines COUNT LENGTH: prints that many lines of that length.
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int, char** argv)
{
    const std::string line(std::strtoul(argv[2], nullptr, 10), 'x');
    for (unsigned long count = std::strtoul(argv[1], nullptr, 10); count > 0; --count)
        std::puts(line.c_str());
    return 0;
}

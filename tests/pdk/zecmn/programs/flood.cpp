// flood STREAM LENGTH: prints lines of that length to that stream for ever.
#include <cstdlib>
#include <string>

#include <unistd.h>

int main(int, char** argv)
{
    const std::string line(std::strtoul(argv[2], nullptr, 10), 'x');
    std::string lines;
    while (lines.size() < 65536)
        lines += line + '\n';
    while (write(std::atoi(argv[1]), lines.data(), lines.size()) > 0) {
    }
    return 1;
}

#include "cli/complaint.h"

#include <cstdio>

#include <unistd.h>

#include "text/printable.h"
#include "text/wrapped.h"

namespace command {

void complain(const std::string& text)
{
    constexpr char name[] = "dmpclaim: ";
    std::string line = printable(text);
    if (isatty(STDERR_FILENO) == 1)
        line = wrapped(line, sizeof name - 1, lineWidth(STDERR_FILENO));
    std::fprintf(stderr, "%s%s\n", name, line.c_str());
}

} // namespace command

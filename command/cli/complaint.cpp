#include "cli/complaint.h"

#include <cstdio>

#include "text/printable.h"

namespace command {

void complain(const std::string& text)
{
    std::fprintf(stderr, "dmpclaim: %s\n", printable(text).c_str());
}

} // namespace command

#include "doctor/versions.h"

#include <fstream>
#include <string>

#include <sys/utsname.h>

#include "text.h"

namespace {

using command::Row;

/// What the system calls itself.
///
///     line = "PRETTY_NAME=" quote text quote
Row systemName()
{
    const std::string key = "PRETTY_NAME=\"";
    std::ifstream file("/etc/os-release");
    for (std::string line; std::getline(file, line);) {
        if (command::startsWith(line, key))
            return line.substr(key.size(), line.find('"', key.size()) - key.size());
    }
    return nullptr;
}

Row kernelName()
{
    struct utsname kernel {};
    uname(&kernel);
    return std::string(kernel.sysname) + ' ' + kernel.release;
}

} // namespace

namespace command {

Row versions()
{
    return {{"dmpclaim", DMPCLAIM_VERSION}, {"kernel", kernelName()}, {"system", systemName()}};
}

} // namespace command

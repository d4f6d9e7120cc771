#include "doctor/versions.h"

#include <fstream>
#include <string>

#include <sys/utsname.h>

#include "text/text.h"

namespace command {

namespace {

/// The system's name; null when its file has none.
///
///     line = "PRETTY_NAME=" quote text quote
Field systemName()
{
    const std::string key = "PRETTY_NAME=\"";
    std::ifstream file("/etc/os-release");
    for (std::string line; std::getline(file, line);) {
        if (startsWith(line, key))
            return line.substr(key.size(), line.find('"', key.size()) - key.size());
    }
    return {};
}

std::string kernelName()
{
    struct utsname kernel {};
    uname(&kernel);
    return std::string(kernel.sysname) + ' ' + kernel.release;
}

} // namespace

Document versions()
{
    return Document::Record{
        {"dmpclaim", DMPCLAIM_VERSION}, {"kernel", kernelName()}, {"system", systemName()}};
}

} // namespace command

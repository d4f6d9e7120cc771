#include "kernel/kernel_roots.h"

#include <string_view>

#include "text/text.h"

namespace command {

std::string KernelRoots::fileOf(const std::string& path) const
{
    constexpr std::string_view usual = "/dev/";
    return startsWith(path, usual) ? dev + '/' + path.substr(usual.size()) : path;
}

} // namespace command

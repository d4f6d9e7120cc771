#include "names/tool_name.h"

#include <algorithm>

namespace command {

namespace {

/// Whether one of the path's parts between slashes is "..".
bool hasParentFolder(std::string_view path)
{
    constexpr std::string_view parent = "..";
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (path.substr(0, end) == parent)
            return true;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return false;
}

bool isBlankOrControl(char character)
{
    constexpr char firstPrintable = '!';
    constexpr char deletion = '\x7f';
    const auto byte = static_cast<unsigned char>(character);
    return byte < firstPrintable || character == deletion;
}

} // namespace

const char* whyNotAsked(std::string_view path)
{
    if (path.find(' ') != std::string_view::npos)
        return "it holds a space, which separates the arguments of the volume manager's tools";
    if (path.find(',') != std::string_view::npos)
        return "it holds a comma, which separates the disks that the volume manager's tools scan";
    if (path.find('\0') != std::string_view::npos)
        return "it holds a NUL byte, which ends the arguments of the volume manager's tools";
    return nullptr;
}

const char* whyNotUsed(std::string_view activePath)
{
    if (hasParentFolder(activePath))
        return "it leaves /dev";
    if (std::any_of(activePath.begin(), activePath.end(), isBlankOrControl))
        return "it holds a blank or a control character";
    return nullptr;
}

} // namespace command

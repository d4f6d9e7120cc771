#include "active/short_command.h"

#include <algorithm>

#include "text/printable.h"

namespace command {

std::string shortCommand(std::string_view command)
{
    std::string words;
    for (int word = 0; word < 2; ++word) {
        command.remove_prefix(std::min(command.find_first_not_of(' '), command.size()));
        const std::size_t end = std::min(command.find(' '), command.size());
        const std::string_view text = command.substr(0, end);
        words += (word == 0 ? "" : " ") + printableWord(text.substr(text.rfind('/') + 1));
        command.remove_prefix(end);
    }
    return words;
}

} // namespace command

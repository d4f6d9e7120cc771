#include "text/word_list.h"

#include <algorithm>

namespace command {

std::string joined(const std::vector<std::string>& words, std::string_view separator)
{
    std::string text;
    for (const std::string& word : words) {
        if (&word != &words.front())
            text += separator;
        text += word;
    }
    return text;
}

std::vector<std::string> splitAtCommas(std::string_view list)
{
    std::vector<std::string> words;
    for (;;) {
        const std::size_t comma = std::min(list.find(','), list.size());
        words.emplace_back(list.substr(0, comma));
        if (comma == list.size())
            return words;
        list.remove_prefix(comma + 1);
    }
}

std::string counted(std::size_t count, std::string_view noun)
{
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

} // namespace command

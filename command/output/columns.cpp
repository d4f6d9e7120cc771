#include "output/columns.h"

#include <algorithm>

#include "text/word_list.h"

namespace command {

std::string Heading::key() const
{
    std::string key(name);
    std::transform(key.begin(), key.end(), key.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return key;
}

std::string namesOf(const std::vector<Heading>& headings)
{
    std::vector<std::string> names;
    names.reserve(headings.size());
    for (const Heading& heading : headings)
        names.emplace_back(heading.name);
    return joined(names);
}

} // namespace command

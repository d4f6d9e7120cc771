#include "output/columns.h"

#include <algorithm>

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
    std::string names;
    for (const Heading& heading : headings)
        (names += names.empty() ? "" : ", ") += heading.name;
    return names;
}

} // namespace command

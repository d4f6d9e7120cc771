#ifndef TEXT_TEXT_H
#define TEXT_TEXT_H

#include <string_view>

namespace command {

inline bool startsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

} // namespace command

#endif

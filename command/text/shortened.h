#ifndef TEXT_SHORTENED_H
#define TEXT_SHORTENED_H

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

/// The beginning of a text that may be a megabyte, for a line that people read, with "..." behind
/// it when it is cut.
inline std::string shortened(std::string_view text)
{
    constexpr std::size_t longest = 160;
    return text.size() <= longest ? std::string(text)
                                  : std::string(text.substr(0, longest)) + "...";
}

} // namespace command

#endif

#ifndef TEXT_WRAPPED_H
#define TEXT_WRAPPED_H

#include <string>
#include <string_view>

namespace command {

/// Breaks `text` at runs of blanks, so that lines indented by `indent` stay within 79 columns. The
/// first line is not indented: the caller has written `indent` columns before it. No line ends in a
/// blank. A word that is too long for any line gets one of its own.
std::string wrapped(std::string_view text, std::size_t indent);

} // namespace command

#endif

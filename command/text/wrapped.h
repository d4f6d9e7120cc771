#ifndef TEXT_WRAPPED_H
#define TEXT_WRAPPED_H

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

/// The columns of a line of text where no terminal says another number.
inline constexpr std::size_t usualWidth = 79;

/// The columns of the terminal at `descriptor`. Without a terminal, what the environment has as
/// COLUMNS, or usualWidth.
std::size_t lineWidth(int descriptor);

/// Breaks `text` at runs of blanks, so that lines indented by `indent` stay within `width` columns.
/// The first line is not indented: the caller has written `indent` columns before it. No line ends
/// in a blank. A word that is too long for any line gets one of its own.
std::string wrapped(std::string_view text, std::size_t indent, std::size_t width = usualWidth);

/// Breaks a text of paragraphs anew. A line that begins with a blank is an item, which stands by
/// itself. Its later lines are indented as its first word or, when two blanks follow that, as its
/// second word:
///
///     Exit status:
///        0  every path is claimed, or none was asked about
std::string reflowed(std::string_view text, std::size_t width);

} // namespace command

#endif

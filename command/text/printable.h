#ifndef TEXT_PRINTABLE_H
#define TEXT_PRINTABLE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

/// The text for people. What the locale cannot print, and what isControlCharacter of
/// pdk/include/czeprintable.h names, becomes \xNN, byte by byte, NUL included. So does a backslash
/// before an 'x'. No name can forge a line or steer a terminal.
std::string printable(std::string_view text);

/// How many cells of a terminal a printable text takes.
std::size_t displayWidth(std::string_view text);

/// The text as one word for programs, the same in every locale: a blank, a backslash and each byte
/// that is not printable ASCII become \xNN.
std::string printableWord(std::string_view text);

/// The text for double quotes of a shell, the same in every locale: '"', '$', '`', '!', a backslash
/// and each byte that is not printable ASCII become \xNN.
std::string printableQuoted(std::string_view text);

} // namespace command

#endif

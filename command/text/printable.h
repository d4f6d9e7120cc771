#ifndef TEXT_PRINTABLE_H
#define TEXT_PRINTABLE_H

#include <string>
#include <string_view>

namespace command {

/// The text for people. What the locale cannot print, and what isControlCharacter of
/// pdk/include/czeprintable.h names, becomes \xNN, byte by byte, NUL included. So does a backslash
/// before an 'x'. No name can forge a line or steer a terminal.
std::string printable(std::string_view text);

/// The text as one word for programs, the same in every locale: a blank, a backslash and each byte
/// that is not printable ASCII become \xNN.
std::string printableWord(std::string_view text);

} // namespace command

#endif

#ifndef ZEPDK_PRINTABLE_TEXT_H
#define ZEPDK_PRINTABLE_TEXT_H

#include <string>
#include <string_view>

/// Appends `text`, which is UTF-8 in every locale. Control characters and bytes that are not UTF-8
/// become \xNN, byte by byte.
void appendPrintable(std::string& line, std::string_view text);

#endif

#ifndef TEXT_WORD_LIST_H
#define TEXT_WORD_LIST_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace command {

/// The words with `separator` between them.
std::string joined(const std::vector<std::string>& words, std::string_view separator = ", ");

/// The words of a user's list. Words may be empty: an empty list has one word.
///
///     list = word { "," word }                    multipath,crypt
std::vector<std::string> splitAtCommas(std::string_view list);

/// "1 disk", "2 disks".
std::string counted(std::size_t count, std::string_view noun);

} // namespace command

#endif

#ifndef CZESTRINGTOOL_H
#define CZESTRINGTOOL_H

#include <ace/SString.h>

#include <string>
#include <vector>

#include "pdk/include/czeexport.h"

namespace koze_pdk_4_4 {

/// The framework's string helpers. Stateless; safe between threads. Throws std::bad_alloc when
/// memory runs out, which framework strings themselves do not report.
class CZE_EXPORT CZeStringTool {
public:
    /// The text of a framework string as a standard string, unchanged, NUL bytes included. Throws
    /// std::bad_alloc too when there was no memory to make `text`.
    static std::string tstr2str(const ACE_String_Base<char>& text);

    /// The text of a standard string as a framework string, unchanged, NUL bytes included.
    static ACE_String_Base<char> str2tstr(const std::string& text);

    /// `text` without the leading and trailing characters that occur in `characters`.
    static std::string trim(const std::string& text, const std::string& characters);

    /// The non-empty pieces of `text` between runs of the characters in `delimiters`, in order.
    static std::vector<std::string> tokenize(const std::string& text,
                                             const std::string& delimiters);

    /// Searches `lines` for the first one that contains `text`.
    ///
    /// The search starts at line `index` and is case-sensitive, unless `ignoreCase`, which folds
    /// ASCII letters. Returns the number of the line, counted from 0, and stores it in `index`;
    /// returns all ones and leaves `index` alone when no line contains the text.
    static unsigned long find(const std::vector<std::string>& lines, const char* text,
                              unsigned long& index, bool ignoreCase);
};

} // namespace koze_pdk_4_4

#endif

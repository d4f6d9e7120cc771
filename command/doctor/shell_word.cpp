#include "doctor/shell_word.h"

namespace {

constexpr char plain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/_-+.,:=@%";

} // namespace

namespace command {

std::string shellWord(const std::string& text)
{
    if (!text.empty() && text.find_first_not_of(plain) == std::string::npos)
        return text;
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += "'\\''";
        else
            word += character;
    }
    return word + '\'';
}

} // namespace command

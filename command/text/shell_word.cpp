#include "text/shell_word.h"

#include <algorithm>
#include <string_view>

namespace command {

namespace {

constexpr std::string_view plain =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/_-+.,:=@%";

bool isPlain(char character)
{
    return plain.find(character) != std::string_view::npos;
}

/// zsh replaces a word of '=' and a program's name by the program's path.
bool isPlainWord(std::string_view text)
{
    return !text.empty() && text.front() != '=' && std::all_of(text.begin(), text.end(), isPlain);
}

/// Printable ASCII without the backslash: `printable` escapes other characters, and a backslash
/// before an 'x'.
bool canBeQuoted(char character)
{
    return character >= ' ' && character <= '~' && character != '\\';
}

std::string inQuotes(std::string_view text)
{
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += "'\\''";
        else
            word += character;
    }
    return word + '\'';
}

/// Octal, because `printable` escapes the backslash of a hexadecimal "\x".
std::string inOctal(std::string_view text)
{
    std::string word = "$'";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (isPlain(character))
            word += character;
        else
            word += {'\\', static_cast<char>('0' + (byte >> 6)),
                     static_cast<char>('0' + (byte >> 3 & 7)), static_cast<char>('0' + (byte & 7))};
    }
    return word + '\'';
}

} // namespace

std::string shellWord(const std::string& text)
{
    if (isPlainWord(text))
        return text;
    return std::all_of(text.begin(), text.end(), canBeQuoted) ? inQuotes(text) : inOctal(text);
}

std::string shellCommand(const std::string& command)
{
    std::string words;
    for (std::size_t position = 0; position < command.size();) {
        const std::size_t begin =
            std::min(command.find_first_not_of(' ', position), command.size());
        const std::size_t end = std::min(command.find(' ', begin), command.size());
        words.append(begin - position, ' ');
        if (begin < end)
            words += shellWord(command.substr(begin, end - begin));
        position = end;
    }
    return words;
}

} // namespace command

#ifndef TESTS_SUPPORT_DISK_LETTERS_H
#define TESTS_SUPPORT_DISK_LETTERS_H

#include <string>

/// The letters of the disk with this number, from 0: "a" to "z", "aa" and so on.
inline std::string diskLetters(int number)
{
    std::string text;
    for (int left = number; left >= 0; left = left / 26 - 1)
        text.insert(text.begin(), static_cast<char>('a' + left % 26));
    return text;
}

#endif

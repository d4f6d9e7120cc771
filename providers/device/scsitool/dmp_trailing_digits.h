#ifndef DMP_TRAILING_DIGITS_H
#define DMP_TRAILING_DIGITS_H

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string>

// Partition numbers stand at the end of a device name: name digit*. Only '0' to '9' are digits,
// whatever the host's locale says.

inline bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Returns where the run of digits that ends `device` begins; its size when it ends in none.
inline std::size_t trailingDigits(const std::string& device)
{
    std::size_t begin = device.size();
    while (begin > 0 && isDigit(device[begin - 1]))
        --begin;
    return begin;
}

/// Returns the number that the digits from `begin` on spell: the low 32 bits of a long, which
/// saturates. The host's errno stays as it was.
inline unsigned int numberAt(const std::string& device, std::size_t begin)
{
    const std::size_t first = std::min(device.find_first_not_of('0', begin), device.size());
    // A number with more digits than the largest long saturates; strtol would read every digit.
    if (device.size() - first > std::numeric_limits<long>::digits10 + 1)
        return static_cast<unsigned int>(std::numeric_limits<long>::max());
    const int hostErrno = errno;
    const long number = std::strtol(device.c_str() + first, nullptr, 10);
    errno = hostErrno;
    return static_cast<unsigned int>(number);
}

#endif

#include "names/naming_warnings.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "text/text.h"

namespace command {

namespace {

using Warnings = std::vector<Warning>;

constexpr std::string_view mapperDirectory = "/dev/mapper/";
constexpr std::string_view udevSeparator = "-part";

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

/// A path as its name and the digits at its end. Both refer to the path's text.
struct Numbered {
    std::string_view name;
    std::string_view digits;
};

Numbered numbered(std::string_view path)
{
    const std::size_t length = path.find_last_not_of("0123456789") + 1; // 0 when all are digits
    return {path.substr(0, length), path.substr(length)};
}

std::string inQuotes(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

/// The digit rule: tools append the number directly to a name that ends in a letter, and put a 'p'
/// before it after a name that ends in a digit.
bool takesNumberDirectly(std::string_view disk)
{
    return !isDigit(disk.back()) && disk.back() != '/';
}

void warnOfPrefixPosition(const NamedDevice& device, Warnings& warnings)
{
    if (startsWith(device.path, device.prefix))
        return;
    warnings.push_back({"prefix-not-at-start",
                        inQuotes(device.prefix) +
                            " stands inside this path, not at its start. The library claims it all "
                            "the same; for other tools it need not be a device of this driver. "
                            "Check that this is the path you mean."});
}

/// The udev names of partitions:  disk "-part" digits          /dev/mapper/mpatha-part3
void warnOfHyphen(const NamedDevice& device, Warnings& warnings)
{
    const Numbered path = numbered(device.path);
    const std::size_t hyphen = std::min(path.name.rfind('-'), path.name.size());
    std::string disk = device.path;
    if (!path.digits.empty() && path.name.substr(hyphen) == udevSeparator) {
        disk = path.name.substr(0, hyphen);
        const std::string number(path.digits);
        warnings.push_back({"udev-partition-name",
                            inQuotes(std::string(udevSeparator) + number) +
                                " is udev's way to name partition " + number +
                                ". The library leaves every path with a '-' unclaimed, and knows a "
                                "'p' and one digit instead. Ask about the disk, " +
                                disk + "."});
    }
    if (disk.find('-') == std::string::npos)
        return;
    warnings.push_back({"hyphen",
                        "A '-' anywhere in the path, folders included, marks a logical volume, and "
                        "no driver claims those. If this is a multipath disk, give it an alias "
                        "without '-'."});
}

/// Partition = disk "p" digit for the library, but other readings are possible.
void warnOfPartition(const NamedDevice& device, Warnings& warnings)
{
    const std::string digit(1, device.path.back());
    std::string text = "For the library the 'p" + digit + "' at the end makes this partition " +
                       digit + " of " + device.disk +
                       ", but the alias of a disk may end like that, too.";
    if (takesNumberDirectly(device.disk))
        text += " Tools that put the number directly behind a name that ends in a letter call "
                "that partition " +
                device.disk + digit + ".";
    warnings.push_back({"p-and-digit", text});
}

void warnOfOtherPartitionNames(const NamedDevice& device, Warnings& warnings)
{
    std::string text = "The library names partition 1 of this disk " + device.path + "p1; ";
    if (takesNumberDirectly(device.path))
        text += "tools that put the number directly behind a name that ends in a letter call it " +
                device.path + "1, and ";
    text += "udev calls it " + device.path +
            "-part1. The library does not take those names for partitions.";
    warnings.push_back({"other-partition-names", text});
}

void warnOfTwoDigits(const Numbered& path, Warnings& warnings)
{
    const std::string number(path.digits);
    const std::string disk(path.name.substr(0, path.name.size() - 1));
    warnings.push_back({"two-digits-behind-p",
                        "This looks like partition " + number + " of " + disk +
                            ", but the library knows one digit behind the 'p' only, and takes the "
                            "path for a whole disk. If it is a partition, ask about " +
                            disk + "."});
}

void warnOfDigitRule(const Numbered& path, Warnings& warnings)
{
    const std::string disk(path.name);
    warnings.push_back({"digit-behind-letter",
                        "Tools that put the number directly behind a name that ends in a letter "
                        "read this as partition " +
                            std::string(path.digits) + " of " + disk +
                            ". The library takes the path for a whole disk. If it is a partition, "
                            "ask about " +
                            disk + "."});
}

void warnOfLetters(const NamedDevice& device, std::string_view letters, Warnings& warnings)
{
    if (letters.empty()) {
        warnings.push_back(
            {"no-disk-letters", "No letters of a disk follow " + inQuotes(device.prefix) +
                                    ", so the disk is said to be " + inQuotes(device.disk) +
                                    ", which names none. Check the name."});
        return;
    }
    for (const char character : letters) {
        if (character >= 'a' && character <= 'z')
            continue;
        warnings.push_back({"unusual-name",
                            inQuotes(letters) + " stands where the disk's letters belong, behind " +
                                inQuotes(device.prefix) +
                                ". The library claims it all the same. Check the name for stray "
                                "characters, such as a blank or a carriage return at its end."});
        return;
    }
}

void warnOfNumber(const NamedDevice& device, Warnings& warnings)
{
    const std::string_view digits = numbered(device.path).digits;
    std::uint32_t number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const std::string text(digits);
    if (result.ec == std::errc::result_out_of_range) {
        warnings.push_back({"number-too-large",
                            "The number " + text +
                                " does not fit into 32 bits, so the library reads another one. No "
                                "disk has such a partition. Check the name."});
    } else if (digits.size() > 1 && digits.front() == '0') {
        const std::string read = std::to_string(number);
        warnings.push_back(
            {"leading-zeros", "The library reads " + text + " as " + read +
                                  ", and names that partition " + device.disk + read +
                                  ", which is another path. Use the name without leading zeros."});
    }
}

} // namespace

void warnOfMapperName(const NamedDevice& device, Warnings& warnings)
{
    const Numbered path = numbered(device.path);
    if (device.isPartition) {
        warnOfPartition(device, warnings);
        return;
    }
    const bool isNumbered = !path.digits.empty();
    if (isNumbered && path.name.back() == 'p') {
        warnOfTwoDigits(path, warnings);
        return;
    }
    if (isNumbered && isLetter(path.name.back()))
        warnOfDigitRule(path, warnings);
    if (device.path.back() != '/')
        warnOfOtherPartitionNames(device, warnings);
}

void warnOfNumberedName(const NamedDevice& device, Warnings& warnings)
{
    const Numbered path = numbered(device.path);
    const std::size_t letters = path.name.rfind(device.prefix) + device.prefix.size();
    warnOfLetters(device, path.name.substr(letters), warnings);
}

void warnOfClaimedName(const NamedDevice& device, NameWarner warnOfName, Warnings& warnings)
{
    warnOfPrefixPosition(device, warnings);
    warnOfName(device, warnings);
    if (device.isPartition)
        warnOfNumber(device, warnings);
}

void warnOfUnclaimedName(const NamedDevice& device, Warnings& warnings)
{
    if (device.path.find(mapperDirectory) != std::string::npos)
        warnOfHyphen(device, warnings);
}

} // namespace command

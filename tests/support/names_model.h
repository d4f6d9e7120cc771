#ifndef TESTS_SUPPORT_NAMES_MODEL_H
#define TESTS_SUPPORT_NAMES_MODEL_H

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

// A second, simple implementation of the drivers' naming rules: the oracle of the random tests and
// of the fuzz tests.

/// All answers about one path and one partition number.
struct Answer {
    std::uint32_t claim = 0;
    bool isPartition = false;
    std::string disk;                   ///< from removing the partition's suffix
    std::optional<unsigned int> number; ///< likewise; none when it was not written
    std::string partition;              ///< from appending the number

    bool operator==(const Answer& other) const
    {
        return claim == other.claim && isPartition == other.isPartition && disk == other.disk &&
               number == other.number && partition == other.partition;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Answer& answer)
{
    stream << "claim " << answer.claim << ", partition " << answer.isPartition << ", disk \""
           << answer.disk << "\", number ";
    if (answer.number)
        stream << *answer.number;
    else
        stream << "left alone";
    return stream << ", partition \"" << answer.partition << '"';
}

/// The answers of a module or the manager. Asks for the disk twice, with different initial numbers,
/// to see whether the number is written.
template <class Module>
Answer answerOf(Module& module, const std::string& device, unsigned int partnum)
{
    unsigned int number = 7;
    unsigned int other = 8;
    Answer answer{module.claim(device), module.isPartition(device),
                  module.removePartitionSuffix(device, number), std::nullopt,
                  module.appendPartitionSuffix(device, partnum)};
    const std::string again = module.removePartitionSuffix(device, other);
    if (number == other)
        answer.number = number;
    else if (number != 7 || other != 8 || again != answer.disk)
        answer.disk += " (one answer of two)";
    return answer;
}

namespace model {

inline bool holds(const std::string& device, const char* text)
{
    return device.find(text) != std::string::npos;
}

inline bool endsInDigit(const std::string& device)
{
    return !device.empty() && std::string("0123456789").find(device.back()) != std::string::npos;
}

/// The low 32 bits of the digits' value, which saturates at the largest signed 64-bit integer.
inline unsigned int valueOf(const std::string& digits)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    std::uint64_t value = 0;
    for (const char digit : digits) {
        const auto units = static_cast<std::uint64_t>(digit - '0');
        value = value > (largest - units) / 10 ? largest : value * 10 + units;
    }
    return static_cast<unsigned int>(value);
}

/// `device` without the digits that end it, and these digits.
inline std::pair<std::string, std::string> splitDigits(std::string device)
{
    std::string digits;
    while (endsInDigit(device)) {
        digits.insert(digits.begin(), device.back());
        device.pop_back();
    }
    return {device, digits};
}

inline std::string asSigned(unsigned int partnum)
{
    return std::to_string(static_cast<std::int32_t>(partnum));
}

inline Answer deviceMapper(const std::string& device, unsigned int partnum)
{
    const bool marked = holds(device, "/dev/mapper/");
    const bool suffixed =
        device.size() >= 2 && endsInDigit(device) && device.compare(device.size() - 2, 1, "p") == 0;
    Answer answer;
    answer.claim = marked && !holds(device, "-") ? 16 : 0;
    answer.isPartition = holds(device, "/dev/mapper") && suffixed;
    answer.disk = marked && suffixed ? device.substr(0, device.size() - 2) : device;
    if (marked && !suffixed)
        answer.number = 0;
    answer.partition = device + "p" + asSigned(partnum);
    return answer;
}

inline Answer powerPath(const std::string& device, unsigned int partnum)
{
    Answer answer;
    answer.claim = holds(device, "/dev/emcpower") ? 16 : 0;
    answer.isPartition = holds(device, "/dev/emcpower") && endsInDigit(device);
    answer.disk = device;
    if (holds(device, "emcpower")) {
        const auto [disk, digits] = splitDigits(device);
        answer.disk = disk;
        answer.number = valueOf(digits);
    }
    answer.partition = device + asSigned(partnum);
    return answer;
}

inline Answer native(const std::string& device, unsigned int partnum)
{
    Answer answer;
    answer.claim = holds(device, "/dev/sd") && device != "/dev/sd" ? 2 : 0;
    answer.isPartition = device.size() > 2 && endsInDigit(device);
    answer.disk = device;
    if (holds(device, "/dev/sd") && endsInDigit(device)) {
        const auto [disk, digits] = splitDigits(device);
        answer.disk = disk;
        answer.number = valueOf(digits);
    }
    const std::string text = device.substr(0, device.find('\0'));
    answer.partition = (text + asSigned(partnum)).substr(0, 1023);
    return answer;
}

/// The multipath drivers win over the plain disk driver; PowerPath wins over the device-mapper.
inline Answer manager(const std::string& device, unsigned int partnum)
{
    for (Answer answer :
         {powerPath(device, partnum), deviceMapper(device, partnum), native(device, partnum)}) {
        if (answer.claim != 0)
            return answer;
    }
    return {};
}

} // namespace model

#endif

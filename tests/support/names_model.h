#ifndef TESTS_SUPPORT_NAMES_MODEL_H
#define TESTS_SUPPORT_NAMES_MODEL_H

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "providers/device/scsitool/dmp_built_in_modules.h"
#include "providers/device/scsitool/dmp_claim_manager.h"

// A second, simple implementation of the drivers' naming rules, and names to ask about. Tests of
// all built-in modules, of the manager and of random names take what they expect from here: nothing
// of it comes from the library but the names of the modules' classes.

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

/// The built-in modules, in the order in which a manager asks them.
using Modules = ModuleList<CNativePathClaim, CDmpPowerPathClaim, CDmpDeviceMapperClaim>;
static_assert(std::is_same_v<Modules, BuiltInModules>);

/// What a manager lists without modules of the host: the last module's prefix first.
inline const std::vector<std::string> prefixes = {"/dev/mapper/", "/dev/emcpower", "/dev/sd"};

/// A partition of each driver, longer than what a string holds without memory of its own.
inline const std::vector<std::string> partitions = {"/dev/mapper/mpathbp2", "/dev/emcpowerc12",
                                                    "/dev/sd-of-a-vm3"};

/// Partitions and disks of drivers that no module knows.
inline const std::vector<std::string> unclaimed = {"/dev/vda1", "/dev/nvme0n1p1", "/dev/dm-3"};

/// Pieces of names: what the rules look for, and near-misses.
inline const std::vector<std::string> markers = {
    "/dev/", "/dev/sd", "/dev/mapper/", "/dev/mapper", "/dev/emcpower", "emcpower", "mpath", "sd"};

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

/// What the module answers. Deleted in general, so that nothing compiles that asks about a built-in
/// module without rules here.
template <class Module>
Answer rules(const std::string& device, unsigned int partnum) = delete;

template <>
inline Answer rules<CDmpDeviceMapperClaim>(const std::string& device, unsigned int partnum)
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

template <>
inline Answer rules<CDmpPowerPathClaim>(const std::string& device, unsigned int partnum)
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

template <>
inline Answer rules<CNativePathClaim>(const std::string& device, unsigned int partnum)
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

/// The strongest claim wins, among equals the earlier module.
template <class... Listed>
Answer strongest(const std::string& device, unsigned int partnum, ModuleList<Listed...> /*modules*/)
{
    Answer winner;
    for (const Answer& claimed : {rules<Listed>(device, partnum)...}) {
        if (claimed.claim > winner.claim)
            winner = claimed;
    }
    return winner;
}

template <>
inline Answer rules<CDmpClaimManager>(const std::string& device, unsigned int partnum)
{
    return strongest(device, partnum, Modules());
}

} // namespace model

#endif

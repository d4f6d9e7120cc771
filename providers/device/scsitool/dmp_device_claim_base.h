#ifndef DMP_DEVICE_CLAIM_BASE_H
#define DMP_DEVICE_CLAIM_BASE_H

#include <cstdint>
#include <string>
#include <vector>

#include "pdk/include/czeexport.h"
#include "pdk/include/czetracelog.h"

/// @file
/// The contract of a claim module. How strongly a module claims a path is a number; larger is
/// stronger. A multipath pseudo-device outranks the plain SCSI disk behind it.

/// Nobody claims the path.
constexpr std::uint32_t CLAIM_NONE = 0;
/// The claim of a plain disk's driver.
constexpr std::uint32_t CLAIM_DEFAULT = 2;
/// The claim of a multipath driver.
constexpr std::uint32_t CLAIM_SECONDARY = 16;

/// A claim module: knows the device paths of one multipath driver by their names alone.
///
/// Modules have no state besides the trace log handle, and report no errors: a path that a module
/// does not understand gives CLAIM_NONE, false, or what the module says of its conversions. An
/// operation leaves by an exception only when memory runs out or the trace log throws. One module
/// serves one thread at a time, because the handle's count is a plain integer.
class CZE_EXPORT CDmpDeviceClaimBase : public koze_pdk_4_4::CZeTraceable {
public:
    CDmpDeviceClaimBase() = default;
    CDmpDeviceClaimBase(const CDmpDeviceClaimBase&) = default;
    CDmpDeviceClaimBase& operator=(const CDmpDeviceClaimBase&) = default;
    ~CDmpDeviceClaimBase() override;

    /// Returns the path prefixes that the module claims, in the module's order.
    virtual std::vector<std::string> getDeviceClaimStrings() = 0;

    /// Returns CLAIM_NONE, CLAIM_DEFAULT or CLAIM_SECONDARY.
    virtual std::uint32_t claim(std::string device) = 0;

    /// Returns whether the path names a partition in the module's naming.
    virtual bool isPartition(std::string device) = 0;

    /// Returns the path of partition `partnum` of the disk `device`. Neither is checked.
    virtual std::string appendPartitionSuffix(std::string device, unsigned int partnum) = 0;

    /// Returns the path of the disk that holds the partition `device`. Each module says when it
    /// writes `partnum`; callers set the number before the call.
    virtual std::string removePartitionSuffix(std::string device, unsigned int& partnum) = 0;

    /// Returns the path that carries the I/O of `device` now: the path itself, unless a module
    /// knows better. The module that does also says what `wait` chooses.
    virtual std::string getActivePath(std::string device, bool wait);

    /// Returns whether "/dev/" occurs anywhere in the path, not only at its start.
    virtual bool isRawDevice(std::string device);

    /// Returns the path without one leading "/dev/"; any other path unchanged.
    virtual std::string removeDevPrefix(std::string device);
};

#endif

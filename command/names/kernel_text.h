#ifndef NAMES_KERNEL_TEXT_H
#define NAMES_KERNEL_TEXT_H

#include <string>
#include <vector>

#include "names/device_answer.h"

namespace command {

/// A line of an explanation.
struct LabelledText {
    const char* label;
    std::string text;
    Tone tone = Tone::plain;
};

/// What the kernel has at an answer's path: what it is, its relatives, its partitions, and whether
/// the name tells that. Empty when no kernel is asked.
std::vector<LabelledText> kernelTexts(const DeviceAnswer& answer);

/// The device that an unclaimed path leads to, if a driver claims the device's own path; else null.
const BlockDevice* claimedTarget(CDmpClaimManager& manager, const DeviceAnswer& answer);

} // namespace command

#endif

#ifndef DOCTOR_FINDING_H
#define DOCTOR_FINDING_H

#include <functional>
#include <string>

#include "doctor/finding_codes.h"

namespace command {

/// One thing that a check found.
struct Finding {
    Code code;
    std::string device;      // or a tool, a driver, a node of the volume manager
    std::string text;        // what was found, as a sentence about the device
    std::string advice = {}; // what to do, in words; empty when nothing need be done
    std::string remedy = {}; // a command that does it, for a shell; empty when there is none

    Severity severity() const { return factsOf(code).severity; }
};

/// Takes the findings as they come.
using FindingReceiver = std::function<void(const Finding&)>;

} // namespace command

#endif

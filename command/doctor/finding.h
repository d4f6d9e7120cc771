#ifndef DOCTOR_FINDING_H
#define DOCTOR_FINDING_H

#include <functional>
#include <string>

namespace command {

/// One thing that a check found.
struct Finding {
    /// note: good to know. warning: an answer may be wrong. error: it is wrong, or none is given.
    enum class State { ok, note, warning, error };

    State state;
    std::string subject;      // a device, a tool or a driver
    std::string text;         // what was found
    std::string remedy = {};  // what to do; empty when nothing need be done
    std::string command = {}; // follows the text, as it was run; empty when there is none
};

/// Takes the findings as they come.
using FindingReceiver = std::function<void(const Finding&)>;

} // namespace command

#endif

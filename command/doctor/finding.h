#ifndef DOCTOR_FINDING_H
#define DOCTOR_FINDING_H

#include <functional>
#include <string>

namespace command {

/// One thing that the examination of a machine found.
struct Finding {
    /// A note is good to know, a warning may make an answer wrong, an error makes it.
    enum class State { ok, note, warning, error };

    State state;
    std::string subject;      // a device, a tool or a driver
    std::string text;         // what was found
    std::string remedy = {};  // what to do; empty when nothing need be done
    std::string command = {}; // as run, that the text ends with; empty when it names none
};

/// Takes the findings as they come.
using FindingReceiver = std::function<void(const Finding&)>;

} // namespace command

#endif

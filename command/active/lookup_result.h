#ifndef ACTIVE_LOOKUP_RESULT_H
#define ACTIVE_LOOKUP_RESULT_H

#include <optional>
#include <string>

#include "active/outcome.h"
#include "names/drivers.h"
#include "output/columns.h"

namespace command {

/// The active path of a device, and how it was found.
struct LookupResult {
    std::string name;
    const Driver* owner = nullptr;
    std::optional<std::string> disk;   // of a claimed path
    std::optional<std::string> active; // nothing when nobody claims the path or it is not looked up
    Outcome outcome;
    std::optional<Texts> used; // the paths that the kernel's multipathing uses; nothing if unknown
    Seconds took{};
    Steps timeline;
    std::optional<std::string> warning; // why not to trust the active path, or why there is none

    bool isChanged() const { return active && *active != name; }
};

const Columns<LookupResult>& lookupColumns();

} // namespace command

#endif

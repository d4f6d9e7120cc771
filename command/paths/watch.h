#ifndef PATHS_WATCH_H
#define PATHS_WATCH_H

#include <chrono>
#include <optional>

#include "cli/options.h"
#include "paths/path_history.h"

namespace command {

inline constexpr char watchOption[] = "--watch";

/// The time between two readings of watched paths; nothing when they are not watched. Throws
/// UsageError.
std::optional<std::chrono::milliseconds> watchInterval(const Options& options);

/// Shows readings of paths: on a terminal each replaces the one before, elsewhere each changed path
/// becomes a line of JSON. Throws what OutputStream throws.
class WatchOutput {
public:
    WatchOutput(const Options& options, OutputStream& output) : m_options(options), m_output(output)
    {}

    void show(const DiskList& list, const Moment& now);

private:
    void redraw(const DiskList& list, const std::vector<PathAnswer>& rows, const Moment& now);
    void writeChanges(const DiskList& list, const std::vector<PathAnswer>& rows);
    void writeRows(Form form, const std::vector<const PathAnswer*>& rows);
    std::size_t roomFor(std::size_t noteLines) const;

    const Options& m_options;
    OutputStream& m_output;
    PathHistory m_history;
    std::vector<std::string> m_notes; // of the last reading
};

} // namespace command

#endif

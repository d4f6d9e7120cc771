#include "cli/wanted_paths.h"

#include <utility>

#include <unistd.h>

namespace command {

PathSource wantedPaths(const Options& options, std::function<void()> beforeWait)
{
    LineReader lines(STDIN_FILENO, std::move(beforeWait));
    if (options.nulSeparated)
        lines.setSeparator('\0');
    return {options.paths, std::move(lines)};
}

} // namespace command

#ifndef CLI_WANTED_PATHS_H
#define CLI_WANTED_PATHS_H

#include <functional>

#include "cli/options.h"
#include "cli/path_source.h"

namespace command {

/// The paths of `options`, with standard input read as they ask for. `beforeWait` is that of
/// LineReader.
PathSource wantedPaths(const Options& options, std::function<void()> beforeWait);

} // namespace command

#endif

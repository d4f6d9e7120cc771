#ifndef CLI_WANTED_PATHS_H
#define CLI_WANTED_PATHS_H

#include <functional>

#include "cli/options.h"
#include "cli/path_source.h"

namespace command {

/// The paths of `options`, which also say how standard input is split. `beforeWait` goes to
/// LineReader.
PathSource wantedPaths(const Options& options, std::function<void()> beforeWait);

} // namespace command

#endif

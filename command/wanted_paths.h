#ifndef WANTED_PATHS_H
#define WANTED_PATHS_H

#include <functional>

#include "options.h"
#include "path_source.h"

namespace command {

/// The paths of `options`, with standard input read as they ask for. `beforeWait` is that of
/// LineReader.
PathSource wantedPaths(const Options& options, std::function<void()> beforeWait);

} // namespace command

#endif

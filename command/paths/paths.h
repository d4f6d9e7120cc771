#ifndef PATHS_PATHS_H
#define PATHS_PATHS_H

#include "cli/options.h"
#include "paths/disk_reader.h"

namespace command {

Subcommand pathsSubcommand();

/// Writes a row for each path of the wanted disks. Returns the exit status, see DiskList. Throws
/// std::system_error when the machine's devices cannot be read. `stop` is the one that the volume
/// manager's functions heed.
int listPaths(const Options& options, OutputStream& output, const PathSources& sources,
              StopRequest& stop);

} // namespace command

#endif

#ifndef DOCTOR_FILE_KIND_H
#define DOCTOR_FILE_KIND_H

#include <string>

namespace command {

enum class FileKind { none, regular, blockDevice, other };

/// What stands under a path, links followed; none also when that cannot be seen.
FileKind fileKind(const std::string& path);

} // namespace command

#endif

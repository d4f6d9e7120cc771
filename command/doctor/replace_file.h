#ifndef DOCTOR_REPLACE_FILE_H
#define DOCTOR_REPLACE_FILE_H

#include <string>
#include <string_view>

namespace command {

/// Replaces a file, or creates it, at once: a reader finds the old text or the new one. Writes a
/// temporary file in the same folder, of mode 0644 so that other accounts may read it, and renames
/// it. Its name does not end as the file's does, so that collectors that look for an ending do not
/// read it. Throws std::system_error when that fails; then the old file is unchanged and the
/// temporary one is removed.
void replaceFile(const std::string& path, std::string_view text);

} // namespace command

#endif

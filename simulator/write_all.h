#ifndef SIMULATOR_WRITE_ALL_H
#define SIMULATOR_WRITE_ALL_H

#include <string_view>

#include <unistd.h>

namespace simulator {

/// Writes the text, with a single write(2) unless the kernel takes it in parts. Returns false, with
/// errno set, when it cannot be written.
inline bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace simulator

#endif

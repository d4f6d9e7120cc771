#ifndef SIMULATOR_REGULAR_FILE_H
#define SIMULATOR_REGULAR_FILE_H

#include <string>
#include <string_view>

#include <sys/types.h>

namespace simulator {

/// An open regular file. Other accounts may be able to write to the folder of the state file, and
/// put a FIFO or a symbolic link in a file's place. Every failure is an Error that names the file.
class RegularFile {
public:
    /// Never waits for the other end of a FIFO. `flags` and `mode` are those of open(2); O_NOFOLLOW
    /// among them refuses symbolic links.
    RegularFile(std::string path, int flags, mode_t mode = 0);
    ~RegularFile();
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    /// Waits until no other process holds the lock. The destructor gives it back.
    void lock() const;

    /// The mode's permissions, without set-user-ID and the like.
    mode_t permissions() const;

    std::string read() const;
    void write(std::string_view text) const;

private:
    std::string m_path;
    const char* m_failure;
    int m_descriptor;
    mode_t m_mode = 0; // and type
};

} // namespace simulator

#endif

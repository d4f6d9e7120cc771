#ifndef PROGRAM_H
#define PROGRAM_H

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace koze_pdk_4_4::runner {

/// Whose rights a program runs with, and the variables that say so: HOME, USER, LOGNAME and SHELL.
struct Identity {
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups;
    std::vector<std::string> variables;
};

/// A program as it is started: its path and arguments, its variables, and, unless they are the
/// host's, its working directory and identity.
struct Program {
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    std::string directory;
    std::optional<Identity> identity;
};

// A setting that cannot be passed on unchanged is a std::invalid_argument.

/// The program path and the arguments of a command line:
///
///     command  = " "* path { " "+ argument } " "*  /usr/sbin/kodisk   rm arr0_17
///     path     = "/" { character }
///     argument = character+                        anything but a space or a NUL byte
std::vector<std::string> splitCommand(const std::string& command);

/// The variables of the host (null-terminated, as `environ`) without LANGUAGE and with LC_ALL=C,
/// replaced and joined by those of an account, and then by `additions`:
///
///     additions = { [ NAME "=" value ] "\n" }      A=1\nB=2
std::vector<std::string> childEnvironment(const char* const* host, const std::string& additions,
                                          const std::optional<Identity>& account = std::nullopt);

/// `directory`, unless it holds a NUL byte.
std::string checkedDirectory(const std::string& directory);

/// The account `name` with all its groups; a std::system_error when the look-up fails. A number of
/// 4294967295 is refused: to the kernel it means to keep the host's.
Identity lookUpUser(const std::string& name);

} // namespace koze_pdk_4_4::runner

#endif

#ifndef ZECMN_PROGRAM_H
#define ZECMN_PROGRAM_H

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace koze_pdk_4_4::runner {

/// The account whose rights a program gets, and its variables HOME, USER, LOGNAME and SHELL.
struct Identity {
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups;
    std::vector<std::string> variables;
};

/// How a program is started: path and arguments, environment, working directory (empty for the
/// host's) and identity (none for the host's).
struct Program {
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    std::string directory;
    std::optional<Identity> identity;
};

// All functions throw std::invalid_argument for a setting that cannot be passed on unchanged.

/// The program path and the arguments of a command line:
///
///     command  = " "* path { " "+ argument } " "*  /usr/sbin/kodisk   rm arr0_17
///     path     = "/" { character }
///     argument = character+                        anything but a space or a NUL byte
std::vector<std::string> splitCommand(const std::string& command);

/// The variables of the host (null-terminated, as `environ`) without LANGUAGE, then LC_ALL=C, then
/// the account's, then `additions`; a later variable replaces an earlier one of the same name:
///
///     additions = { [ NAME "=" value ] "\n" }      A=1\nB=2
std::vector<std::string> childEnvironment(const char* const* host, const std::string& additions,
                                          const std::optional<Identity>& account = std::nullopt);

/// `directory`, unless it holds a NUL byte.
std::string checkedDirectory(const std::string& directory);

/// The account `name` with all its groups. Throws std::system_error when the look-up fails. Refuses
/// the id 4294967295: to setresuid and setresgid it means to keep the host's.
Identity lookUpUser(const std::string& name);

} // namespace koze_pdk_4_4::runner

#endif

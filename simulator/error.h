#ifndef SIMULATOR_ERROR_H
#define SIMULATOR_ERROR_H

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace simulator {

/// The simulator cannot do its own work. The failures of a simulated tool are an Answer instead.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws an Error of "WHAT PATH: reason of errno".
[[noreturn]] inline void failWithErrno(const char* what, const std::string& path)
{
    throw Error(std::string(what) + " " + path + ": " + std::generic_category().message(errno));
}

} // namespace simulator

#endif

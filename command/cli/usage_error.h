#ifndef CLI_USAGE_ERROR_H
#define CLI_USAGE_ERROR_H

#include <stdexcept>
#include <string>

namespace command {

/// The command line asks for something that cannot be done. The text says what, on one line.
class UsageError : public std::runtime_error {
public:
    /// `subcommand` is the one whose help tells more; empty for the help of the whole command.
    explicit UsageError(const std::string& text, std::string subcommand = "")
        : std::runtime_error(text), m_subcommand(std::move(subcommand))
    {}

    const std::string& subcommand() const { return m_subcommand; }

private:
    std::string m_subcommand;
};

} // namespace command

#endif

#ifndef CLI_PATH_SOURCE_H
#define CLI_PATH_SOURCE_H

#include <optional>
#include <string>
#include <vector>

#include "cli/line_reader.h"

namespace command {

/// The paths that the user asks about: the arguments in order, and for "-" the lines of standard
/// input.
class PathSource {
public:
    PathSource(std::vector<std::string> arguments, LineReader standardInput)
        : m_arguments(std::move(arguments)), m_standardInput(std::move(standardInput))
    {}

    /// The next path; nothing at the end. Throws what LineReader::next throws.
    std::optional<std::string> next();

private:
    std::vector<std::string> m_arguments;
    LineReader m_standardInput;
    std::size_t m_position = 0;
};

} // namespace command

#endif

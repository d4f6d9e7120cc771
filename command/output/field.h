#ifndef OUTPUT_FIELD_H
#define OUTPUT_FIELD_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace command {

using Seconds = std::chrono::duration<double>;

/// A step of a lookup: a command or, without one, a wait.
struct Step {
    std::string command;
    std::optional<int> result; // of a command: 0 for success; nothing when it could not be run
    Seconds duration;
};

using Steps = std::vector<Step>;

/// A command line as it is run. Tables quote it for a shell.
struct CommandLine {
    std::string text;
};

/// Several texts of one field, such as the links to a device. Tables join them with commas.
using Texts = std::vector<std::string>;

/// What a colour of the terminal tells.
enum class Tone { plain, heading, good, note, warning, bad };

/// A word that a terminal shows in a colour, such as a state.
struct Mark {
    std::string text;
    Tone tone;
};

/// Yes or no in a colour.
struct Flag {
    bool isSet;
    Tone tone;
};

/// One value of an answer; std::monostate where the library gives none. Each output decides how it
/// looks.
using Field = std::variant<std::monostate, bool, std::int64_t, Seconds, std::string, CommandLine,
                           Steps, Texts, Mark, Flag>;

template <class Value>
Field optionalField(const std::optional<Value>& value)
{
    return value ? Field(*value) : Field();
}

inline Field nonEmptyField(const std::string& text)
{
    return text.empty() ? Field() : Field(text);
}

/// The fields of one answer, in the order of the columns.
using Row = std::vector<Field>;

} // namespace command

#endif

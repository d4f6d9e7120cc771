#ifndef CLI_OPTIONS_H
#define CLI_OPTIONS_H

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/color.h"
#include "cli/subcommand.h"
#include "cli/trace.h"
#include "output/columns.h"
#include "output/make_row_writer.h"

namespace command {

/// What the user asks for.
struct Options {
    const Subcommand* subcommand = nullptr;
    std::vector<std::string> paths; // of append: the disk or "-"; of doctor: none for all disks
    unsigned int partnum = 0;       // of append
    bool nulSeparated = false;
    std::map<std::string, std::string> own; // the subcommand's own options that are given
    Form form = Form::table;
    bool withHeadings = true;
    std::vector<Heading> columns; // none when the subcommand prints no columns
    TraceOptions trace;
    ColorChoice color = ColorChoice::automatic;

    /// `option` is one of the subcommand's own, such as "--refresh".
    bool isGiven(const char* option) const { return own.count(option) > 0; }

    /// The value of one of the subcommand's own options; nothing when it is not given.
    std::optional<std::string> value(const char* option) const;
};

/// The help or the version, when the user asks for that instead.
using Information = std::string;

/// Parses the arguments, without the command's name. `subcommands` must outlive the result. `width`
/// is that of the lines of help. Throws UsageError.
std::variant<Options, Information> parseOptions(const std::vector<std::string>& arguments,
                                                const std::vector<Subcommand>& subcommands,
                                                std::size_t width = 79);

/// A decimal number of digits only; nothing when the text is anything else or does not fit.
std::optional<unsigned int> parseNumber(const std::string& text);

/// Seconds, rounded to milliseconds; nothing when the text is anything else or does not fit.
///
///     seconds = digits [ "." digits ]          10, 0.5
std::optional<std::chrono::milliseconds> parseSeconds(const std::string& text);

} // namespace command

#endif

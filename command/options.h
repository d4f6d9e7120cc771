#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>
#include <variant>
#include <vector>

#include "columns.h"
#include "trace.h"

namespace command {

enum class Subcommand { list, show, explain, append, strip, prefixes, active, doctor };

enum class Form { table, raw, bare, text, json };

/// What the user asks for.
struct Options {
    Subcommand subcommand = Subcommand::list;
    std::vector<std::string> paths; // of append: the disk; of doctor: none for all disks
    unsigned int partnum = 0;       // of append
    bool nulSeparated = false;
    bool refresh = false; // of active, like the next three
    bool dryRun = false;
    bool withProgress = true;
    unsigned int jobs = 1;
    Form form = Form::table;
    bool withHeadings = true;
    std::vector<Column> columns; // of explain and doctor: none
    TraceOptions trace;
};

/// A text that the user asks for instead: the help or the version.
using Information = std::string;

/// Understands the arguments, the command's name not among them. Throws UsageError.
std::variant<Options, Information> parseOptions(const std::vector<std::string>& arguments);

} // namespace command

#endif

#ifndef CLI_SUBCOMMAND_H
#define CLI_SUBCOMMAND_H

#include <string>
#include <vector>

#include "output/columns.h"
#include "output/make_row_writer.h"
#include "output/output_stream.h"

namespace command {

struct Options;

/// An option of the whole command or of one subcommand. The last value given counts.
struct OptionDeclaration {
    const char* names; // as CLI11 takes them: "-j,--jobs"; braces hold the value that stands for
                       // one that is left out: "-w{2},--watch{2}"
    const char* value; // as help shows it: " N", or "[=N]" if it may be left out; null for a flag
    std::string help;

    /// Whether a value may be left out.
    bool hasOptionalValue() const { return value != nullptr && *value == '['; }

    /// "--jobs"
    std::string longName() const;

    /// "-j"; the long name of an option that has no short one.
    std::string firstName() const;
};

/// A command line that help shows, and what it is for.
struct Example {
    const char* arguments; // behind "dmpclaim ":  show /dev/sdc2
    const char* purpose;
};

enum class Arguments { none, paths, optionalPaths, diskAndNumber };

/// A subcommand: what the command line offers, and what runs it.
struct Subcommand {
    std::string name;
    std::string help;
    std::string footer;
    Arguments arguments;
    std::vector<OptionDeclaration> options;
    Form form;                            // without -J, -o and -r
    Headings (*headings)(const Options&); // null when it prints no columns
    int (*run)(const Options&, OutputStream&);
    std::vector<Example> examples = {};
};

} // namespace command

#endif

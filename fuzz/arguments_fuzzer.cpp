// Any bytes as a command line: it is understood, or refused with one line that says why; and as a
// command of the runner, with the same.
//
//     input = { argument NUL }
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "cli/options.h"
#include "cli/usage_error.h"
#include "pdk/zecmn/program.h"
#include "require.h"

using command::Arguments;
using command::Subcommand;

namespace {

/// A subcommand for each kind of arguments.
const std::vector<Subcommand>& subcommands()
{
    static const std::vector<Subcommand> all{
        {"paths", "", "", Arguments::paths, {{"--own", nullptr, ""}}, {}, nullptr, nullptr},
        {"some", "", "", Arguments::optionalPaths, {{"--value", " N", ""}}, {}, nullptr, nullptr},
        {"disk", "", "", Arguments::diskAndNumber, {}, command::Form::bare, nullptr, nullptr},
        {"none", "", "", Arguments::none, {}, command::Form::table, nullptr, nullptr}};
    return all;
}

void checkCommandLine(const std::vector<std::string>& arguments)
{
    try {
        const auto wanted = command::parseOptions(arguments, subcommands());
        if (const auto* options = std::get_if<command::Options>(&wanted))
            FUZZ_REQUIRE(options->subcommand != nullptr);
        else
            FUZZ_REQUIRE(!std::get<command::Information>(wanted).empty());
    } catch (const command::UsageError& refused) {
        FUZZ_REQUIRE(*refused.what() != '\0');
    }
}

void checkRunner(const std::string& text)
{
    using namespace koze_pdk_4_4::runner;
    try {
        const std::vector<std::string> words = splitCommand(text);
        FUZZ_REQUIRE(words.at(0).at(0) == '/');
        for (const std::string& word : words)
            FUZZ_REQUIRE(!word.empty() && word.find(' ') == std::string::npos);
        const char* host[] = {"LANGUAGE=de", "A=1", nullptr};
        FUZZ_REQUIRE(!childEnvironment(host, text).empty());
    } catch (const std::invalid_argument& refused) {
        FUZZ_REQUIRE(*refused.what() != '\0');
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    std::vector<std::string> arguments;
    std::istringstream stream(text);
    for (std::string argument; std::getline(stream, argument, '\0');)
        arguments.push_back(argument);
    checkCommandLine(arguments);
    checkRunner(text);
    return 0;
}

// Each allocation of `dmpclaim active` fails once.
#include <gtest/gtest.h>

#include <map>

#include <unistd.h>

#include "cli/options.h"
#include "commands.h"
#include "kovm/command_lines.h"
#include "tests/command/allocation_failures.h"
#include "tests/support/replaced_runner.h"

namespace {

using Lines = std::vector<std::string>;

/// What the volume manager's tools print.
const std::map<std::string, Lines> answers{
    {kovm::nodeQuery("sdc"), {"NAME STATE", "====", "node-of-a-long-name ENABLED"}},
    {kovm::pathQuery("node-of-a-long-name"), {"NAME STATE TYPE", "====", "sdd ENABLED(A)"}}};

} // namespace

static int resultOf(const std::string& command, std::vector<std::string>& output)
{
    output = answers.at(command);
    return 0;
}

extern "C" int access(const char* /*name*/, int /*type*/) noexcept
{
    return 0;
}

namespace {

/// Returns how many have failed.
std::size_t failEach(const std::vector<std::string>& arguments)
{
    using namespace command;
    const auto options = std::get<Options>(parseOptions(arguments, subcommands()));
    return AllocationFailures(
               [&](OutputStream& output) { options.subcommand->run(options, output); })
        .failEach();
}

TEST(ActiveAllocations, OfALookupFailOneByOne)
{
    EXPECT_GE(failEach({"active", "--no-progress", "-o", "NAME,OWNER,ACTIVE,RESULT", "/dev/sdc"}),
              100U);
}

TEST(ActiveAllocations, OfADryRunFailOneByOne)
{
    EXPECT_GE(failEach({"active", "--dry-run", "/dev/sdc"}), 100U);
}

} // namespace

// Bad usage: what is said, and where.
#include <gmock/gmock.h>

#include "names/drivers.h"
#include "tests/command/dmpclaim.h"

namespace {

/// Runs the command and expects nothing but `message` on standard error.
void expectBadUsage(const std::vector<std::string>& arguments, const std::string& message)
{
    const Result result = run(arguments);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, message);
    EXPECT_EQ(result.status, 2);
}

TEST(Usage, BadUsageTellsWhatIsWrongAndWhereHelpIs)
{
    expectBadUsage({}, "dmpclaim: no subcommand is given; there are list, show, explain, append, "
                       "strip, active, doctor, paths, prefixes, help\n"
                       "Try 'dmpclaim --help' for more information.\n");
    expectBadUsage({"frobnicate"}, "dmpclaim: unknown subcommand 'frobnicate'\n"
                                   "Try 'dmpclaim --help' for more information.\n");
    expectBadUsage({"append", "/dev/sda", "-1"},
                   "dmpclaim: '-1' is not a partition number (0 to 4294967295)\n"
                   "Try 'dmpclaim append --help' for more information.\n");
    expectBadUsage({"prefixes", "-o", "SIZE"},
                   "dmpclaim: unknown column 'SIZE'; there are PREFIX, OWNER\n"
                   "Try 'dmpclaim prefixes --help' for more information.\n");
    std::string owners;
    for (const command::Driver& driver : command::drivers())
        owners += driver.name + std::string(", ");
    expectBadUsage({"list", "--owner", "x"},
                   "dmpclaim: --owner knows no 'x'; there are " + owners +
                       "none\n"
                       "Try 'dmpclaim list --help' for more information.\n");
}

TEST(Usage, AMessageForgesNoLines)
{
    expectBadUsage({"a\nb\x1b"}, "dmpclaim: unknown subcommand 'a\\x0ab\\x1b'\n"
                                 "Try 'dmpclaim --help' for more information.\n");
}

TEST(Usage, NothingIsDoneWithJsonEither)
{
    expectBadUsage({"show", "-J"}, "dmpclaim: PATH is required\n"
                                   "Try 'dmpclaim show --help' for more information.\n");
}

TEST(Usage, HelpAndVersionGoToStandardOutput)
{
    for (const char* option : {"-h", "--help", "-V", "--version"}) {
        const Result result = run({option});
        EXPECT_NE(result.output, "");
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(result.status, 0);
    }
}

} // namespace

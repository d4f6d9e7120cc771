#include "cli/complaint.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include "tests/support/terminal.h"

namespace {

TEST(Complaint, IsALineThatIsMadePrintable)
{
    testing::internal::CaptureStderr();
    command::complain(
        "'a\nb' is too long for a terminal, but this is none, and the line stays one");
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "dmpclaim: 'a\\x0ab' is too long for a terminal, but this is none, and the line stays "
        "one\n");
}

TEST(Complaint, IsWrappedAtATerminalsWidthBehindTheCommandsName)
{
    const Terminal terminal({24, 30, 0, 0});
    const StreamOnTerminal errors(STDERR_FILENO, terminal);
    command::complain("this is wider than the terminal");
    EXPECT_EQ(terminal.written(), "dmpclaim: this is wider than\n"
                                  "          the terminal\n");
}

} // namespace

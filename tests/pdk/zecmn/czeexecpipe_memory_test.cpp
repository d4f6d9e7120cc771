// The runner in a host without memory: each allocation in turn fails.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include "exec_test.h"
#include "tests/support/failing_allocations.h"

namespace {

/// How many allocations succeed before one fails; negative: all.
int allocationsLeft = -1;

} // namespace

static bool allocationFails()
{
    return allocationsLeft >= 0 && allocationsLeft-- == 0;
}

namespace {

class ExecMemory : public ExecTest {
protected:
    /// Runs the command again and again, each time one more allocation succeeds, until all do.
    /// Returns how often one failed.
    int failures(const std::string& command, int result)
    {
        const std::string line = commandLine(command);
        const std::string environment = mark() + "\nA=1";
        const std::string input(100, 'x');
        for (int number = 0;; ++number) {
            koze_pdk_4_4::CZeExecPipePosix runner(1);
            Lines lines;
            std::string reason;
            int found = -1;
            allocationsLeft = number;
            try {
                found = runner.Exec(line, lines, "/", 60, "root", environment, input);
            } catch (const koze_pdk_4_4::EZeExecPipe& caught) {
                reason = caught.what();
            }
            const bool failed = allocationsLeft < 0;
            allocationsLeft = -1;
            expectNoChild();
            if (!failed) {
                EXPECT_EQ(found, result);
                return number;
            }
            if (found != result) {
                EXPECT_EQ(reason, "cannot run " + commandLine("print") + ": no memory");
            }
        }
    }
};

TEST_F(ExecMemory, IsReportedWhereverItEnds)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may set the groups of a program";
    EXPECT_GT(failures("print 0 1 a\\nlong_enough_to_be_allocated\\n 2 c\\n", 0), 20);
    EXPECT_GT(failures("print 3 1 a\\nlong_enough_to_be_allocated\\n 2 c\\n", 3), 20);
}

} // namespace

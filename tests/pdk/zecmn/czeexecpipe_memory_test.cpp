// The runner in a host without memory: each allocation in turn fails.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <iostream>

#include <unistd.h>

#include "exec_test.h"
#include "tests/support/allocation_probe.h"

namespace {

class ExecMemory : public ExecTest {
protected:
    /// Lets each allocation of a run fail once. Returns how many failed.
    std::size_t failEach(const std::string& command, int result) const
    {
        std::size_t failures = 0;
        while (failsAt(failures + 1, command, result))
            ++failures;
        std::cout << failures << " failed allocations\n";
        return failures;
    }

private:
    /// Whether a run makes that many allocations.
    bool failsAt(std::size_t number, const std::string& command, int result) const
    {
        const std::string line = commandLine(command);
        const std::string environment = mark() + "\nA=1";
        const std::string input(100, 'x');
        std::string reason;
        int found = -1;
        const AllocationProbe probe(number);
        try {
            koze_pdk_4_4::CZeExecPipePosix runner(1);
            Lines lines;
            found = runner.Exec(line, lines, "/", 60, "root", environment, input);
        } catch (const koze_pdk_4_4::EZeExecPipe& caught) {
            const AllocationProbe::Pause pause;
            reason = caught.what();
        }
        const AllocationProbe::Pause pause;
        EXPECT_EQ(probe.living().size(), 0U) << number;
        expectNoChild();
        if (found != result) {
            EXPECT_TRUE(probe.failed()) << number;
            EXPECT_EQ(reason, "cannot run " + commandLine("print") + ": no memory");
        }
        return probe.failed();
    }
};

TEST_F(ExecMemory, IsReportedWhereverItEnds)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may set the groups of a program";
    EXPECT_GE(failEach("print 0 1 a\\nlong_enough_to_be_allocated\\n 2 c\\n", 0), 21U);
    EXPECT_GE(failEach("print 3 1 a\\nlong_enough_to_be_allocated\\n 2 c\\n", 3), 21U);
}

} // namespace

// The runner in hosts with closed descriptors, with very many, and without room for more of them or
// for another process.
#include "pdk/include/czeexecpipe.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "closed_standard.h"
#include "exec_test.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

class ExecHost : public ExecTest {};

/// Limits the descriptors of this process while it lives.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit wanted{limit, std::max(limit, m_before.rlim_max)};
        m_granted = setrlimit(RLIMIT_NOFILE, &wanted) == 0;
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

    bool granted() const { return m_granted; }

private:
    rlimit m_before{};
    bool m_granted;
};

TEST_F(ExecHost, ThatHasClosedItsStandardDescriptors)
{
    const std::vector<std::vector<int>> sets = {{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}};
    for (const std::vector<int>& set : sets) {
        int results[3];
        Lines descriptors;
        std::vector<int> during;
        {
            const ClosedStandard closed(set);
            results[0] = exec("show descriptors");
            descriptors = output();
            Settings settings;
            settings.input = "text";
            results[1] = exec("show input", settings);
            results[2] = output() == Lines({"text"}) ? 0 : 1;
            during = ClosedStandard::open();
        }
        EXPECT_THAT(results, testing::Each(0));
        EXPECT_EQ(during.size(), 3 - set.size());
        EXPECT_THAT(descriptors,
                    ElementsAre("0 /dev/null", StartsWith("1 pipe:"), StartsWith("2 pipe:")));
    }
}

TEST_F(ExecHost, WithADescriptorLimitOf20000)
{
    const DescriptorLimit limit(20000);
    ASSERT_TRUE(limit.granted());
    const int last = fcntl(0, F_DUPFD, 19999);
    ASSERT_EQ(last, 19999);
    EXPECT_EQ(exec("show descriptors"), 0);
    EXPECT_EQ(output().size(), 3);
    close(last);
    expectEveryEnding();
}

TEST_F(ExecHost, With100000OpenDescriptorsOrAsManyAsItMay)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const DescriptorLimit wanted(100100);
    const DescriptorLimit granted(wanted.granted() ? 100100 : before.rlim_max);
    std::vector<int> descriptors((wanted.granted() ? 100100 : before.rlim_max) - 100);
    for (int& descriptor : descriptors)
        descriptor = dup(0);
    EXPECT_GE(descriptors.back(), descriptors.size());
    EXPECT_EQ(exec("show descriptors"), 0);
    EXPECT_EQ(output().size(), 3);
    expectEveryEnding();
    for (const int descriptor : descriptors)
        close(descriptor);
}

/// The reason why a program cannot be run under a descriptor limit; empty when it can.
std::string refusalUnder(rlim_t limit, const std::function<int()>& exec)
{
    const DescriptorLimit limited(limit);
    try {
        return exec() == 0 ? "" : "wrong result";
    } catch (const koze_pdk_4_4::EZeExecPipe& caught) {
        return caught.what();
    }
}

TEST_F(ExecHost, WithoutEnoughDescriptorsLeft)
{
    const auto run = [this] { return exec("exit_with 0"); };
    // A first run, because the sanitizers open descriptors when they first see a type.
    EXPECT_EQ(run(), 0);
    EXPECT_NE(refusal("/no/such/program"), "");
    for (const std::vector<int>& set : {std::vector<int>(), {0}, {0, 2}}) {
        const ClosedStandard closed(set);
        int refused = 0;
        std::string reason;
        for (rlim_t limit = 0; !(reason = refusalUnder(limit, run)).empty(); ++limit) {
            EXPECT_THAT(reason, testing::EndsWith(": Too many open files"));
            expectNoChild();
            ASSERT_LT(++refused, 1000);
        }
        EXPECT_GT(refused, 3);
    }
}

TEST_F(ExecHost, WithoutRoomForAnotherProcess)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become a user with a process already";
    // In a child process, because the change cannot be undone.
    EXPECT_EXIT(
        {
            const rlimit none{};
            setrlimit(RLIMIT_NPROC, &none);
            const int given = setresuid(65534, 65534, 65534);
            fprintf(stderr, "%d %s", given, refusal("/bin/true").c_str());
            _exit(0);
        },
        testing::ExitedWithCode(0),
        "0 cannot run /bin/true: cannot start a process: Resource temporarily unavailable");
}

} // namespace

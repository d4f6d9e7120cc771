// Each system call of a sink that writes to a file fails once with each error.
#include <filesystem>
#include <iostream>
#include <system_error>

#include <gmock/gmock.h>

#include <sys/syscall.h>

#include "pdk/include/czetracesink.h"
#include "tests/support/namespaces.h"
#include "tests/support/system_call_faults.h"
#include "trace_file_sink.h"

namespace {

class SinkSystemCalls : public TraceFileSink {
protected:
    SinkSystemCalls() { std::filesystem::create_symlink("trace.log", m_link); }

    void SetUp() override
    {
        if (!mayFailCalls())
            endWithoutNamespaces();
    }

    /// Opens the file through a link, writes two lines and closes it.
    void writeTwoLines()
    {
        std::filesystem::remove(path);
        try {
            koze_pdk_4_4::CZeTraceFileSink sink(6, m_link);
            sink.write(6, "one");
            sink.write(6, "two");
            m_dropped = sink.dropped();
        } catch (const std::system_error& failure) {
            m_reason = failure.what();
        }
    }

    /// A sink that was opened has stored each line or counted it; another has said which file it
    /// cannot open.
    std::string complaint() const
    {
        if (!m_reason.empty())
            return m_reason.rfind(m_link, 0) == 0 ? "" : "does not name the file: " + m_reason;
        const std::vector<std::string> lines = linesOf(path);
        const auto isWhole =
            testing::Matches(testing::MatchesRegex("[-0-9T:.+]+ \\[[0-9]+\\] 6 (one|two)"));
        for (const std::string& line : lines) {
            if (!isWhole(line))
                return "stores a part of a line: " + line;
        }
        return lines.size() + m_dropped == 2 ? "" : "loses a line and does not count it";
    }

private:
    std::string m_link = folder.file("link");
    std::string m_reason;
    std::uint64_t m_dropped = 0;
};

TEST_F(SinkSystemCalls, FailOneByOne)
{
    const unsigned int faults = failEachCall(
        {errorsOf({SYS_close, SYS_fcntl, SYS_fstatfs, SYS_newfstatat, SYS_openat, SYS_readlinkat,
                   SYS_rt_sigprocmask, SYS_rt_sigtimedwait, SYS_write}),
         [this] { writeTwoLines(); }, [this](const CallFault&) { return complaint(); }});
    std::cout << faults << " faults\n";
    EXPECT_GE(faults, 320U);
}

} // namespace

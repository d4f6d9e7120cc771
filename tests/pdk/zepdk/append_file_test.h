#ifndef APPEND_FILE_TEST_H
#define APPEND_FILE_TEST_H

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ios>
#include <string>
#include <system_error>
#include <utility>

#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pdk/include/czetracesink.h"
#include "tests/support/temporary_folder.h"

/// Another account.
constexpr uid_t stranger = 4711;

/// Why the path cannot be opened; empty when a line was written. The message begins with the path.
inline std::string refusal(const std::string& path)
{
    try {
        koze_pdk_4_4::CZeTraceFileSink sink(6, path);
        sink.write(2, "line");
        EXPECT_EQ(sink.dropped(), 0U);
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(), path + ": " + error.code().message());
        return error.code().message();
    }
    return "";
}

/// Makes this process one of the stranger's, which ends with its parent.
inline void becomeStranger()
{
    if (setresgid(stranger, stranger, stranger) != 0 ||
        setresuid(stranger, stranger, stranger) != 0)
        _exit(1);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_DUMPABLE, 1); // otherwise its /proc/self/fd belongs to root
}

/// Why a path is refused in a folder that others may write.
constexpr char foreignLink[] = "symbolic link of another account in a folder that others may write";
constexpr char foreignFifo[] = "FIFO of another account in a folder that others may write";
constexpr char foreignFile[] = "file of another account in a folder that others may write";
constexpr char severalNames[] = "file with several names in a folder that others may write";

/// Base of the tests: a folder that others may write, for the trace file, and a victim, whose text
/// another account wants to change.
class AppendFile : public testing::Test {
protected:
    void SetUp() override
    {
        alarm(60); // ends a test that waits
        umask(022);
        std::filesystem::create_directory(shared);
        chmod(shared.c_str(), 01777);
        std::ofstream(victim) << "untouched\n";
    }
    void TearDown() override { alarm(0); }

    /// The victim's text has not changed.
    bool isUntouched() const { return textOf(victim) == "untouched\n"; }

    TemporaryFolder folder;
    std::string shared = folder.file("common");
    std::string trace = shared + "/trace.log";
    std::string victim = folder.file("victim");
};

/// Runs checks in a folder that others may write, in each way in which they may.
class InASharedFolder : public AppendFile {
protected:
    void SetUp() override
    {
        AppendFile::SetUp();
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can make files of another account";
    }

    void inEachSharedFolder(const std::function<void()>& check) const
    {
        const std::pair<mode_t, uid_t> ways[] = {{01777, 0}, {0777, 0},        {0775, 0},
                                                 {0757, 0},  {0755, stranger}, {01777, stranger}};
        for (const auto& [mode, owner] : ways) {
            SCOPED_TRACE(testing::Message() << std::oct << mode << " of " << owner);
            ASSERT_EQ(chown(shared.c_str(), owner, 0), 0);
            ASSERT_EQ(chmod(shared.c_str(), mode), 0);
            check();
            std::filesystem::remove(trace);
        }
    }

    static void giveAway(const std::string& path)
    {
        ASSERT_EQ(lchown(path.c_str(), stranger, stranger), 0);
    }
};

#endif

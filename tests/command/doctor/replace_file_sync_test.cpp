// The order of the system calls that replace a file.
#include "doctor/replace_file.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

namespace {

std::vector<std::string> calls;
bool syncFails = false;

} // namespace

extern "C" int fsync(int descriptor)
{
    calls.emplace_back("fsync");
    if (!syncFails)
        return static_cast<int>(syscall(SYS_fsync, descriptor));
    errno = EIO;
    return -1;
}

extern "C" int rename(const char* from, const char* to) noexcept
{
    calls.emplace_back("rename");
    return static_cast<int>(syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}

namespace {

using testing::ElementsAre;

class ReplaceFileSync : public testing::Test {
protected:
    ReplaceFileSync()
    {
        calls.clear();
        syncFails = false;
    }

    TemporaryFolder m_folder;
};

TEST_F(ReplaceFileSync, TheNewFileIsOnTheDiskBeforeItReplacesTheOldOne)
{
    command::replaceFile(m_folder.file("metrics"), "new\n");
    EXPECT_THAT(calls, ElementsAre("fsync", "rename"));
    EXPECT_EQ(textOf(m_folder.file("metrics")), "new\n");
}

TEST_F(ReplaceFileSync, AFileThatCannotBeSyncedReplacesNothing)
{
    command::replaceFile(m_folder.file("metrics"), "old\n");
    syncFails = true;
    EXPECT_THROW(command::replaceFile(m_folder.file("metrics"), "new\n"), std::system_error);
    EXPECT_EQ(textOf(m_folder.file("metrics")), "old\n");
}

} // namespace

// Opening and closing the file of a sink: system calls that fail, threads that are cancelled.
#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/child.h"
#include "tests/support/temporary_folder.h"

using koze_pdk_4_4::CZeTraceFileSink;
using koze_pdk_4_4::CZeTraceSinkHandle;

namespace {

bool closeFails = false;
bool duplicationFails = false;
int openFlags = 0;

} // namespace

// As in the C library: close is a cancellation point, and may report an earlier write's error.
extern "C" int close(int fd)
{
    pthread_testcancel();
    const auto result = static_cast<int>(syscall(SYS_close, fd));
    if (closeFails)
        errno = EIO;
    return result;
}

extern "C" int fcntl(int fd, int cmd, ...)
{
    if (cmd == F_DUPFD_CLOEXEC && duplicationFails) {
        errno = EMFILE;
        return -1;
    }
    std::va_list arguments;
    va_start(arguments, cmd);
    const auto result = static_cast<int>(syscall(SYS_fcntl, fd, cmd, va_arg(arguments, int)));
    va_end(arguments);
    return result;
}

extern "C" int openat(int fd, const char* file, int oflag, ...)
{
    std::va_list arguments;
    va_start(arguments, oflag);
    openFlags = oflag;
    const auto result =
        static_cast<int>(syscall(SYS_openat, fd, file, oflag, va_arg(arguments, int)));
    va_end(arguments);
    return result;
}

namespace {

// Tests the flag, because kernels differ in when an opened terminal becomes the controlling one.
TEST(Open, AsksForNoTerminalOfTheHosts)
{
    const TemporaryFolder folder;
    openFlags = 0;
    const CZeTraceFileSink sink(6, folder.file("trace.log"));
    EXPECT_EQ(openFlags,
              O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | O_NOFOLLOW);
}

TEST(Open, WithoutADescriptorAboveTheStandardThreeFailsAndKeepsNone)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("trace.log");
    EXPECT_TRUE(holdsInChild([&] {
        close(0);
        duplicationFails = true;
        closeFails = true;
        try {
            CZeTraceFileSink(6, path);
        } catch (const std::system_error& error) {
            return error.code() == std::errc::too_many_files_open &&
                   syscall(SYS_fcntl, 0, F_GETFD) < 0 && std::string(error.what()).find(path) == 0;
        }
        return false;
    }));
}

TEST(Open, EndsNoThreadThatIsCancelled)
{
    const TemporaryFolder folder;
    bool reached = false;
    std::thread([&] {
        pthread_cancel(pthread_self());
        const CZeTraceFileSink sink(6, folder.file("trace.log"));
        reached = true;
    }).join();
    EXPECT_TRUE(reached);
}

TEST(Close, LeavesErrnoAlone)
{
    const TemporaryFolder folder;
    CZeTraceSinkHandle sink = new CZeTraceFileSink(6, folder.file("trace.log"));
    closeFails = true;
    errno = EXDEV;
    sink.release();
    EXPECT_EQ(errno, EXDEV);
    closeFails = false;
}

TEST(Close, EndsNoThreadThatIsCancelled)
{
    const TemporaryFolder folder;
    bool reached = false;
    std::thread([&] {
        CZeTraceSinkHandle sink = new CZeTraceFileSink(6, folder.file("trace.log"));
        pthread_cancel(pthread_self());
        sink.release();
        reached = true;
    }).join();
    EXPECT_TRUE(reached);
}

} // namespace

// The descriptors that the sinks open, and those that callers give them.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pdk/include/czetracelog.h"
#include "tests/support/child.h"
#include "tests/support/descriptor.h"
#include "trace_file_sink.h"

using koze_pdk_4_4::CZeTraceDescriptorSink;
using koze_pdk_4_4::CZeTraceFileSink;
using koze_pdk_4_4::CZeTraceLog;
using koze_pdk_4_4::CZeTraceLogHandle;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// The descriptors of this process that lead to `path`.
std::vector<int> descriptorsOf(const std::string& path)
{
    std::vector<int> found;
    struct stat file {};
    struct stat open {};
    if (stat(path.c_str(), &file) != 0)
        return found;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (fstat(descriptor, &open) == 0 && open.st_dev == file.st_dev &&
            open.st_ino == file.st_ino)
            found.push_back(descriptor);
    }
    return found;
}

/// The error of opening `path`, which must name the path.
std::error_code errorOfOpening(const std::string& path)
{
    try {
        const CZeTraceFileSink sink(6, path);
    } catch (const std::system_error& error) {
        EXPECT_THAT(error.what(), HasSubstr(path));
        return error.code();
    }
    return {};
}

TEST_F(TraceFileSink, SaysWhatCannotBeOpened)
{
    EXPECT_EQ(errorOfOpening(folder.file("none/trace.log")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(errorOfOpening(folder.file("")), std::errc::is_a_directory);
    EXPECT_EQ(errorOfOpening(folder.file(std::string(300, 'x'))), std::errc::filename_too_long);
    EXPECT_EQ(errorOfOpening(""), std::errc::no_such_file_or_directory);
}

TEST_F(TraceFileSink, ItsDescriptorIsClosedOnExecAndWithTheSink)
{
    {
        const CZeTraceFileSink sink(6, path);
        const std::vector<int> descriptors = descriptorsOf(path);
        ASSERT_EQ(descriptors.size(), 1U);
        EXPECT_EQ(fcntl(descriptors[0], F_GETFD), FD_CLOEXEC);
        EXPECT_EQ(fcntl(descriptors[0], F_GETFL) & (O_ACCMODE | O_APPEND), O_WRONLY | O_APPEND);
    }
    EXPECT_THAT(descriptorsOf(path), IsEmpty());
}

TEST_F(TraceFileSink, TakesNoStandardDescriptorOfAHostThatClosedThem)
{
    for (const int closed : {0, 1, 2}) {
        EXPECT_TRUE(holdsInChild([&] {
            for (int descriptor = closed; descriptor <= 2; ++descriptor)
                close(descriptor);
            CZeTraceFileSink sink(6, path);
            const std::vector<int> descriptors = descriptorsOf(path);
            sink.write(2, "kept");
            return descriptors.size() == 1 && descriptors[0] > 2 &&
                   fcntl(descriptors[0], F_GETFD) == FD_CLOEXEC && sink.dropped() == 0;
        })) << closed;
    }
    EXPECT_THAT(linesOf(path), testing::SizeIs(3));
}

TEST_F(TraceFileSink, TakesOneDescriptorAndLeavesNoOtherOpen)
{
    const auto openDescriptors = [] {
        int count = 0;
        for (int descriptor = 0; descriptor < 256; ++descriptor)
            count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
        return count;
    };
    EXPECT_TRUE(holdsInChild([&] {
        close(0);
        const int before = openDescriptors();
        const CZeTraceFileSink sink(6, path);
        return openDescriptors() == before + 1;
    }));
}

TEST_F(TraceFileSink, ATerminalDoesNotBecomeTheHostsOwn)
{
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(controller, 0);
    ASSERT_EQ(grantpt(controller), 0);
    ASSERT_EQ(unlockpt(controller), 0);
    char terminal[64];
    ASSERT_EQ(ptsname_r(controller, terminal, sizeof terminal), 0);
    EXPECT_TRUE(holdsInChild([&] {
        setsid();
        CZeTraceFileSink sink(6, terminal);
        sink.write(2, "line");
        return sink.dropped() == 0 && open("/dev/tty", O_RDWR) < 0;
    }));
    close(controller);
}

TEST(TraceDescriptorSink, AFullDiskDropsTheLine)
{
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    CZeTraceDescriptorSink sink(6, full.number());
    sink.write(2, "lost");
    sink.write(2, "lost");
    EXPECT_EQ(sink.dropped(), 2U);
}

TEST(TraceDescriptorSink, AReadOnlyDescriptorDropsTheLine)
{
    const Descriptor readOnly = openFile("/dev/null", O_RDONLY);
    CZeTraceDescriptorSink sink(6, readOnly.number());
    sink.write(2, "lost");
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST(TraceDescriptorSink, AClosedDescriptorDropsTheLine)
{
    CZeTraceDescriptorSink sink(6, -1);
    sink.write(2, "lost");
    EXPECT_EQ(sink.dropped(), 1U);
}

TEST(TraceDescriptorSink, StaysTheCallers)
{
    const Descriptor null = openFile("/dev/null", O_WRONLY);
    {
        CZeTraceDescriptorSink sink(6, null.number());
        sink.write(2, "line");
        EXPECT_EQ(sink.dropped(), 0U);
    }
    EXPECT_GE(fcntl(null.number(), F_GETFD), 0);
}

TEST(TraceDescriptorSink, AFailureDisturbsNoOperation)
{
    const CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceDescriptorSink(6, -1));
    errno = EXDEV;
    log->trace(2, "lost");
    EXPECT_EQ(errno, EXDEV);
}

} // namespace

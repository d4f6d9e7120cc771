// The functions of libdevmapper that talk to the kernel are replaced here.
#include "kernel/map_status.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <libdevmapper.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "kernel/inventory.h"
#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// What the made-up kernel does, and what it was asked.
struct Kernel {
    int result = 1;
    int error = 0;
    const char* target = "multipath";
    const char* parameters = "2 0 1 0 0 0";
    int asked = 0;
    int type = -1;
    int major = -1;
    int minor = -1;
    bool mayFlush = true;
    int accessError = 0; // for accounts that want to read and write the control node
    int tasks = 0;       // that were made and not destroyed
    int memory = 1000;   // how many calls that prepare a task find some
    dm_log_with_errno_fn logger = nullptr; // of libdevmapper's messages
};

Kernel kernel;

} // namespace

extern "C" {

int access(const char* name, int mode) noexcept
{
    if (kernel.accessError == 0 || mode != (R_OK | W_OK))
        return static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, name, mode));
    errno = kernel.accessError;
    return -1;
}

void dm_log_with_errno_init(dm_log_with_errno_fn logger)
{
    kernel.logger = logger;
}

dm_task* dm_task_create(int type)
{
    if (kernel.memory-- == 0)
        return nullptr;
    kernel.type = type;
    ++kernel.tasks;
    return reinterpret_cast<dm_task*>(&kernel); // NOLINT: an opaque type
}

void dm_task_destroy(dm_task* /*task*/)
{
    --kernel.tasks;
}

int dm_task_set_major(dm_task* /*task*/, int major)
{
    kernel.major = major;
    return kernel.memory-- != 0 ? 1 : 0;
}

int dm_task_set_minor(dm_task* /*task*/, int minor)
{
    kernel.minor = minor;
    return kernel.memory-- != 0 ? 1 : 0;
}

int dm_task_no_flush(dm_task* /*task*/)
{
    kernel.mayFlush = false;
    return kernel.memory-- != 0 ? 1 : 0;
}

int dm_task_no_open_count(dm_task* /*task*/)
{
    return kernel.memory-- != 0 ? 1 : 0;
}

int dm_task_run(dm_task* /*task*/)
{
    ++kernel.asked;
    if (kernel.result == 0 && kernel.logger != nullptr)
        kernel.logger(3, "ioctl.c", 1, kernel.error, "the request failed");
    return kernel.result;
}

int dm_task_get_errno(dm_task* /*task*/)
{
    return kernel.error;
}

void* dm_get_next_target(dm_task* /*task*/, void* /*next*/, std::uint64_t* /*start*/,
                         std::uint64_t* /*length*/, char** type, char** parameters)
{
    *type = const_cast<char*>(kernel.target);           // NOLINT: the library's signature
    *parameters = const_cast<char*>(kernel.parameters); // NOLINT
    return nullptr;
}
}

namespace {

class MapStatusReader : public testing::Test {
protected:
    MapStatusReader()
    {
        kernel = {};
        m_machine.addMap("dm-3", "254:3", "mpatha", "mpath-3600");
        std::ofstream(control()) << "";
    }

    std::string control() const { return m_machine.dev("mapper/control"); }

    MapStatus read() const
    {
        const Inventory inventory(m_machine.roots());
        return DeviceMapper(control())(*inventory.named("dm-3"));
    }

    MadeUpMachine m_machine;
};

TEST_F(MapStatusReader, AsksForTheMapByItsNumberAndDoesNotWaitForRequests)
{
    const MapStatus status = read();
    EXPECT_EQ(kernel.asked, 1);
    EXPECT_EQ(kernel.type, DM_DEVICE_STATUS);
    EXPECT_EQ(kernel.major, 254);
    EXPECT_EQ(kernel.minor, 3);
    EXPECT_FALSE(kernel.mayFlush);
    EXPECT_EQ(kernel.tasks, 0);
    EXPECT_FALSE(status.error);
    EXPECT_EQ(status.target, "multipath");
    EXPECT_EQ(status.parameters, "2 0 1 0 0 0");
}

TEST_F(MapStatusReader, AMapWithoutATableHasNoTarget)
{
    kernel.target = kernel.parameters = nullptr;
    EXPECT_EQ(read().target, "");
    EXPECT_FALSE(read().error);
}

TEST_F(MapStatusReader, AsksNothingWhenTheControlNodeMayNotBeOpened)
{
    remove(std::filesystem::path(control()));
    EXPECT_EQ(read().error, std::errc::no_such_file_or_directory);
    EXPECT_EQ(kernel.asked, 0);
    EXPECT_EQ(kernel.tasks, 0);
}

TEST_F(MapStatusReader, AsksNothingForAccountsThatMayNotWriteToTheControlNode)
{
    kernel.accessError = EACCES;
    EXPECT_EQ(read().error, std::errc::permission_denied);
    EXPECT_EQ(kernel.asked, 0);
}

TEST_F(MapStatusReader, SaysWhatTheKernelRefuses)
{
    kernel.result = 0;
    kernel.error = EACCES;
    EXPECT_EQ(read().error, std::errc::permission_denied);
    kernel.error = ENXIO;
    EXPECT_EQ(read().error, std::errc::no_such_device_or_address);
    kernel.error = 0;
    EXPECT_EQ(read().error, std::errc::io_error);
    EXPECT_EQ(kernel.tasks, 0);
}

TEST_F(MapStatusReader, IgnoresLibdevmappersMessagesWhileItLives)
{
    kernel.result = 0;
    const Inventory inventory(m_machine.roots());
    std::optional<DeviceMapper> mapper(control());
    ASSERT_NE(kernel.logger, nullptr);
    testing::internal::CaptureStderr();
    (*mapper)(*inventory.named("dm-3"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    mapper.reset();
    EXPECT_EQ(kernel.logger, nullptr); // libdevmapper's own
}

TEST_F(MapStatusReader, AsksNothingWithoutMemory)
{
    for (int calls = 0; calls < 5; ++calls) {
        kernel.memory = calls;
        EXPECT_EQ(read().error, std::errc::not_enough_memory) << calls;
        EXPECT_EQ(kernel.asked, 0);
        EXPECT_EQ(kernel.tasks, 0);
    }
}

TEST_F(MapStatusReader, AsksNothingAboutAMapThatHasVanished)
{
    const Inventory inventory(m_machine.roots());
    remove(m_machine.sysfs("class/block/dm-3/dev"));
    EXPECT_EQ(DeviceMapper(control())(*inventory.named("dm-3")).error,
              std::errc::no_such_device_or_address);
    EXPECT_EQ(kernel.asked, 0);
}

} // namespace

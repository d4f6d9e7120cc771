#include "kernel/map_status.h"

#include <cerrno>
#include <memory>

#include <libdevmapper.h>
#include <unistd.h>

namespace command {

namespace {

using Task = std::unique_ptr<dm_task, void (*)(dm_task*)>;

MapStatus failure(int number)
{
    return {std::error_code(number, std::generic_category()), {}, {}};
}

/// libdevmapper would write its messages to standard error.
void ignoreMessage(int /*level*/, const char* /*file*/, int /*line*/, int /*number*/,
                   const char* /*format*/, ...)
{}

/// The number finds the map whatever characters its name has. Without the flag that forbids
/// flushing, a suspended map's status would wait.
bool prepare(dm_task* task, const DeviceNumber& number)
{
    return task != nullptr && dm_task_set_major(task, static_cast<int>(number.major)) != 0 &&
           dm_task_set_minor(task, static_cast<int>(number.minor)) != 0 &&
           dm_task_no_flush(task) != 0 && dm_task_no_open_count(task) != 0;
}

MapStatus firstTarget(dm_task* task)
{
    std::uint64_t start = 0;
    std::uint64_t length = 0;
    char* target = nullptr;
    char* parameters = nullptr;
    dm_get_next_target(task, nullptr, &start, &length, &target, &parameters);
    return {{}, target == nullptr ? "" : target, parameters == nullptr ? "" : parameters};
}

} // namespace

DeviceMapper::DeviceMapper(std::string control) : m_control(std::move(control))
{
    dm_log_with_errno_init(ignoreMessage);
}

DeviceMapper::~DeviceMapper()
{
    dm_lib_release();
    dm_log_with_errno_init(nullptr);
}

MapStatus DeviceMapper::operator()(const BlockDevice& map) const
{
    // libdevmapper would make the node if it were missing.
    if (access(m_control.c_str(), R_OK | W_OK) != 0)
        return failure(errno);
    const std::optional<DeviceNumber> device = map.number();
    if (!device)
        return failure(ENXIO);
    const Task task(dm_task_create(DM_DEVICE_STATUS), dm_task_destroy);
    if (!prepare(task.get(), *device))
        return failure(ENOMEM);
    if (dm_task_run(task.get()) == 0) {
        const int number = dm_task_get_errno(task.get());
        return failure(number == 0 ? EIO : number); // 0 when the request did not reach the kernel
    }
    return firstTarget(task.get());
}

} // namespace command

#include "multipath/path_through.h"

#include <algorithm>
#include <iterator>

namespace command {

namespace {

/// The states in which the SCSI layer of the kernel refuses requests.
constexpr const char* offlineStates[] = {"offline", "transport-offline", "cancel", "deleted"};

bool isOffline(const BlockDevice& device)
{
    const std::optional<std::string> state = device.state();
    return state && std::find(std::begin(offlineStates), std::end(offlineStates), *state) !=
                        std::end(offlineStates);
}

} // namespace

DiskPath pathThrough(const BlockDevice& device)
{
    DiskPath path;
    path.name = device.kind() == DeviceKind::nvmePath ? device.kernelName() : device.path();
    path.device = &device;
    if (isOffline(device)) {
        path.state = PathState::offline;
        path.isUsed = false;
    }
    return path;
}

} // namespace command

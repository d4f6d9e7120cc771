#ifndef KERNEL_MAP_STATUS_H
#define KERNEL_MAP_STATUS_H

#include <functional>
#include <string>
#include <system_error>

#include "kernel/block_device.h"

namespace command {

/// What the device-mapper answers about a map.
struct MapStatus {
    std::error_code error;  // permission_denied for users who are not root
    std::string target;     // the type of the map's first target, such as "multipath"
    std::string parameters; // what the target says of itself
};

/// Asks for the status of a map.
using ReadMapStatus = std::function<MapStatus(const BlockDevice& map)>;

/// Asks the device-mapper of the running kernel, which does not wait for requests that the map has
/// in flight. Opens nothing and makes no node when `control`, the device-mapper's node, may not be
/// opened. Used by one thread.
class DeviceMapper {
public:
    explicit DeviceMapper(std::string control = "/dev/mapper/control");
    DeviceMapper(const DeviceMapper&) = delete;
    DeviceMapper& operator=(const DeviceMapper&) = delete;

    /// Closes the control node.
    ~DeviceMapper();

    MapStatus operator()(const BlockDevice& map) const;

private:
    std::string m_control;
};

} // namespace command

#endif

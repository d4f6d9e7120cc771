#ifndef KERNEL_DEVICE_LOOKUP_H
#define KERNEL_DEVICE_LOOKUP_H

#include <optional>
#include <string>

#include "kernel/machine.h"

namespace command {

/// Looks a device up when it is first asked for, and once.
class DeviceLookup {
public:
    /// Asks no kernel: there is no machine, and no device.
    DeviceLookup() = default;

    /// The machine must outlive this object and its copies.
    explicit DeviceLookup(const Machine& machine) : m_machine(&machine) {}

    /// The device is known already.
    DeviceLookup(const Machine& machine, const BlockDevice& device)
        : m_machine(&machine), m_found(&device)
    {}

    const Machine* machine() const { return m_machine; }

    /// The device that the kernel has at the path; null when it has none. REQUIRES: always the same
    /// path.
    const BlockDevice* at(const std::string& path) const
    {
        if (!m_found)
            m_found = m_machine == nullptr ? nullptr : m_machine->inventory().at(path);
        return *m_found;
    }

private:
    const Machine* m_machine = nullptr;
    mutable std::optional<const BlockDevice*> m_found;
};

} // namespace command

#endif

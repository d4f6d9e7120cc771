#ifndef KERNEL_MACHINE_H
#define KERNEL_MACHINE_H

#include <optional>
#include <string>

#include "kernel/inventory.h"

namespace command {

/// A machine whose inventory is read when it is first asked for. Used by one thread.
class Machine {
public:
    explicit Machine(KernelRoots roots = {}) : m_roots(std::move(roots)) {}

    const KernelRoots& roots() const { return m_roots; }

    const Inventory& inventory() const;

    /// The file at the path, links followed. Does not read the inventory.
    Node nodeAt(const std::string& path) const { return command::nodeAt(m_roots.fileOf(path)); }

    /// The device that the text means; null when there is none. Does not read the inventory for a
    /// text that is no device's node, number or name.
    ///
    ///     text = path | kernel-name | number          /dev/disk/by-id/x, dm-0, 254:0
    const BlockDevice* resolve(const std::string& text) const;

    /// The same, and finds a device whose node is missing by the path of that node.
    const BlockDevice* find(const std::string& text) const;

private:
    KernelRoots m_roots;
    mutable std::optional<Inventory> m_inventory;
};

} // namespace command

#endif

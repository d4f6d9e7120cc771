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

    /// What stands at the path, links followed. Does not read the inventory.
    Node nodeAt(const std::string& path) const { return command::nodeAt(m_roots.fileOf(path)); }

    /// The device that the text means; null when there is none. Reads the inventory only when there
    /// is one.
    ///
    ///     text = path | kernel-name | number          /dev/disk/by-id/x, dm-0, 254:0
    const BlockDevice* resolve(const std::string& text) const;

    /// The same, but a device that has no node is also found by the path that its node would have.
    const BlockDevice* find(const std::string& text) const;

private:
    KernelRoots m_roots;
    mutable std::optional<Inventory> m_inventory;
};

} // namespace command

#endif

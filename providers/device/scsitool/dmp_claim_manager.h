#ifndef DMP_CLAIM_MANAGER_H
#define DMP_CLAIM_MANAGER_H

#include <cstdint>
#include <string>
#include <vector>

#include "dmp_device_claim_base.h"

#if defined(__clang__)
#pragma clang diagnostic push
// The manager's registerTraceLog is an operation of its own; it hides the base's on purpose.
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif

/// The host's entry: owns the claim modules, finds the one that owns a path and forwards to it.
///
/// Starts with the built-in modules, in the order of docs/naming-rules.md, all silent until
/// `registerTraceLog`. The strongest claim wins, among equals the earlier module. One manager
/// serves one thread; queries do not change it.
///
/// Modules and the trace log may call the manager from within its operations, but not destroy it. A
/// module that is registered while the modules are being asked is first asked by the next question.
/// A log that is registered meanwhile goes to every listed module.
///
/// An operation leaves by an exception only when memory runs out, or a module of the host's or the
/// trace log throws.
class CZE_EXPORT CDmpClaimManager : public virtual koze_pdk_4_4::CZeTraceable {
public:
    CDmpClaimManager();
    CDmpClaimManager(const CDmpClaimManager&) = delete;
    CDmpClaimManager& operator=(const CDmpClaimManager&) = delete;

    /// Deletes every listed module, in order. Their destructors must not call the manager.
    ~CDmpClaimManager() override;

    /// Gives the module the manager's log and appends it to the list; null is ignored.
    ///
    /// When the call returns, the manager owns the module: made with `new`, registered once, never
    /// deleted by the host. When the call leaves by an exception, whichever it is, the module is
    /// not listed and stays the host's; it may have been given the log. So a host writes
    ///
    ///     auto module = std::make_unique<HostModule>();
    ///     manager.registerClaimModule(module.get());
    ///     module.release();
    virtual void registerClaimModule(CDmpDeviceClaimBase* module);

    /// Shares `log` and passes it to every listed module. The entering and exiting line of this
    /// call go to the log held before. Called through a CZeTraceable reference, the base's
    /// operation of the same name runs instead, which tells the modules nothing.
    virtual void registerTraceLog(koze_pdk_4_4::CZeTraceLogHandle& log);

    /// Returns the claim strings of all modules, the last module's first.
    virtual std::vector<std::string> getDeviceClaimStrings();

    /// Returns the strongest claim of the path; CLAIM_NONE when nobody claims it.
    virtual std::uint32_t claim(std::string device);

    /// Returns whether the owning module takes the path for a partition; false when nobody claims
    /// it.
    virtual bool isPartition(std::string device);

    /// Returns the owning module's path of partition `partnum` of the disk `device`; an empty
    /// string when nobody claims the disk.
    virtual std::string appendPartitionSuffix(std::string device, unsigned int partnum);

    /// Returns the owning module's path of the disk that holds the partition `device`, and writes
    /// `partnum` as that module states. When nobody claims the path, returns an empty string and
    /// leaves `partnum` alone.
    virtual std::string removePartitionSuffix(std::string device, unsigned int& partnum);

    /// Returns the strongest claim of the path and stores its module, which stays the manager's,
    /// in `module`. When nobody claims the path, returns CLAIM_NONE and leaves `module` alone.
    std::uint32_t getClaimModule(CDmpDeviceClaimBase*& module, std::string device);

private:
    std::vector<CDmpDeviceClaimBase*> m_modules;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#endif

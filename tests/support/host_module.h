#ifndef TESTS_SUPPORT_HOST_MODULE_H
#define TESTS_SUPPORT_HOST_MODULE_H

#include <cstdint>
#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_device_claim_base.h"

/// What happened to host modules, in order.
using Journal = std::vector<std::string>;

/// A host's own claim module: gives the answers that it was constructed with, and records its calls
/// and its destruction in a journal.
class HostModule : public CDmpDeviceClaimBase {
public:
    HostModule(Journal& journal, std::string name, std::uint32_t result = CLAIM_NONE);
    HostModule(const HostModule&) = delete;
    HostModule& operator=(const HostModule&) = delete;
    ~HostModule() override;

    std::vector<std::string> getDeviceClaimStrings() override;
    std::uint32_t claim(std::string device) override;
    bool isPartition(std::string device) override;
    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override;
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override;

    /// The log that the module was given; null when none.
    koze_pdk_4_4::CZeTraceLog* log() const;

private:
    void note(const std::string& event);

    Journal& m_journal;
    std::string m_name;
    std::uint32_t m_result;
};

#endif

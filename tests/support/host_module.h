#ifndef TESTS_SUPPORT_HOST_MODULE_H
#define TESTS_SUPPORT_HOST_MODULE_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "providers/device/scsitool/dmp_device_claim_base.h"

/// What happened to host modules, in order.
using Journal = std::vector<std::string>;

/// A host's own claim module: gives the answers that it was constructed with, and records its calls
/// and its destruction in a journal.
class HostModule : public CDmpDeviceClaimBase {
public:
    HostModule(Journal& journal, std::string name, std::uint32_t result = CLAIM_NONE)
        : m_journal(journal), m_name(std::move(name)), m_result(result)
    {}
    HostModule(const HostModule&) = delete;
    HostModule& operator=(const HostModule&) = delete;
    ~HostModule() override { note("deleted"); }

    std::vector<std::string> getDeviceClaimStrings() override
    {
        note("getDeviceClaimStrings");
        return {"/" + m_name + "/1", "/" + m_name + "/2"};
    }

    std::uint32_t claim(std::string device) override
    {
        note("claim " + device);
        return m_result;
    }

    bool isPartition(std::string device) override
    {
        note("isPartition " + device);
        return true;
    }

    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override
    {
        note("appendPartitionSuffix " + device);
        return device + "+" + std::to_string(partnum);
    }

    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override
    {
        note("removePartitionSuffix " + device);
        partnum += 100;
        return device + "-";
    }

    /// The log that the module was given; null when none.
    koze_pdk_4_4::CZeTraceLog* log() const { return m_traceLog.get(); }

private:
    void note(const std::string& event) { m_journal.push_back(m_name + ": " + event); }

    Journal& m_journal;
    std::string m_name;
    std::uint32_t m_result;
};

#endif

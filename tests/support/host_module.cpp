#include "tests/support/host_module.h"

#include <utility>

HostModule::HostModule(Journal& journal, std::string name, std::uint32_t result)
    : m_journal(journal), m_name(std::move(name)), m_result(result)
{}

HostModule::~HostModule()
{
    note("deleted");
}

std::vector<std::string> HostModule::getDeviceClaimStrings()
{
    note("getDeviceClaimStrings");
    return {"/" + m_name + "/1", "/" + m_name + "/2"};
}

std::uint32_t HostModule::claim(std::string device)
{
    note("claim " + device);
    return m_result;
}

bool HostModule::isPartition(std::string device)
{
    note("isPartition " + device);
    return true;
}

std::string HostModule::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    note("appendPartitionSuffix " + device);
    return device + "+" + std::to_string(partnum);
}

std::string HostModule::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    note("removePartitionSuffix " + device);
    partnum += 100;
    return device + "-";
}

koze_pdk_4_4::CZeTraceLog* HostModule::log() const
{
    return m_traceLog.get();
}

void HostModule::note(const std::string& event)
{
    m_journal.push_back(m_name + ": " + event);
}

#include "dmp_claim_manager.h"

#include <iterator>
#include <utility>

#include "dmp_built_in_modules.h"

namespace {

/// Visits the modules that are listed when the walk begins. A module, or the trace log, may
/// register another module meanwhile, which moves the list in memory.
template <class Visit>
void forEach(const std::vector<CDmpDeviceClaimBase*>& modules, Visit visit)
{
    const std::size_t count = modules.size();
    for (std::size_t number = 0; number < count; ++number)
        visit(*modules[number]);
}

template <class... Modules>
void addNew(std::vector<CDmpDeviceClaimBase*>& list, ModuleList<Modules...> /*modules*/)
{
    (list.push_back(new Modules), ...);
}

} // namespace

// The list holds plain pointers: when a module cannot be made here, those made before it are not
// deleted, as the host's framework expects of a constructor that throws.
CDmpClaimManager::CDmpClaimManager()
{
    CZE_TRACE_FUNCTION();
    addNew(m_modules, BuiltInModules());
}

CDmpClaimManager::~CDmpClaimManager()
{
    for (CDmpDeviceClaimBase* module : m_modules)
        delete module;
}

void CDmpClaimManager::registerClaimModule(CDmpDeviceClaimBase* module)
{
    CZE_TRACE_FUNCTION();
    if (module == nullptr)
        return;
    module->registerTraceLog(m_traceLog);
    m_modules.push_back(module);
}

void CDmpClaimManager::registerTraceLog(koze_pdk_4_4::CZeTraceLogHandle& log)
{
    CZE_TRACE_FUNCTION();
    m_traceLog = log;
    // Not `log`: a module may register another log meanwhile, and all modules get the last one.
    forEach(m_modules,
            [this](CDmpDeviceClaimBase& module) { module.registerTraceLog(m_traceLog); });
}

std::vector<std::string> CDmpClaimManager::getDeviceClaimStrings()
{
    CZE_TRACE_FUNCTION();
    std::vector<std::string> merged;
    forEach(m_modules, [&merged](CDmpDeviceClaimBase& module) {
        std::vector<std::string> strings = module.getDeviceClaimStrings();
        merged.insert(merged.begin(), std::make_move_iterator(strings.begin()),
                      std::make_move_iterator(strings.end()));
    });
    return merged;
}

std::uint32_t CDmpClaimManager::claim(std::string device)
{
    CZE_TRACE_FUNCTION();
    CDmpDeviceClaimBase* module = nullptr;
    return getClaimModule(module, std::move(device));
}

bool CDmpClaimManager::isPartition(std::string device)
{
    CZE_TRACE_FUNCTION();
    CDmpDeviceClaimBase* module = nullptr;
    getClaimModule(module, device);
    return module != nullptr && module->isPartition(std::move(device));
}

std::string CDmpClaimManager::appendPartitionSuffix(std::string device, unsigned int partnum)
{
    CZE_TRACE_FUNCTION();
    CDmpDeviceClaimBase* module = nullptr;
    getClaimModule(module, device);
    return module == nullptr ? std::string()
                             : module->appendPartitionSuffix(std::move(device), partnum);
}

std::string CDmpClaimManager::removePartitionSuffix(std::string device, unsigned int& partnum)
{
    CZE_TRACE_FUNCTION();
    CDmpDeviceClaimBase* module = nullptr;
    getClaimModule(module, device);
    return module == nullptr ? std::string()
                             : module->removePartitionSuffix(std::move(device), partnum);
}

std::uint32_t CDmpClaimManager::getClaimModule(CDmpDeviceClaimBase*& module, std::string device)
{
    CZE_TRACE_FUNCTION();
    std::uint32_t strongest = CLAIM_NONE;
    forEach(m_modules, [&](CDmpDeviceClaimBase& candidate) {
        const std::uint32_t result = candidate.claim(device);
        if (result > strongest) {
            strongest = result;
            module = &candidate;
        }
    });
    return strongest;
}

#ifndef TESTS_SUPPORT_OPERATIONS_H
#define TESTS_SUPPORT_OPERATIONS_H

#include <functional>
#include <string>
#include <vector>

/// A call of one operation.
struct Operation {
    std::string name;
    std::function<void()> call;
};

/// A call of every operation that the modules and the manager share.
template <class Module>
std::vector<Operation> operationsOf(Module& module, const std::string& device)
{
    return {
        {"getDeviceClaimStrings", [&module] { module.getDeviceClaimStrings(); }},
        {"claim", [&module, device] { module.claim(device); }},
        {"isPartition", [&module, device] { module.isPartition(device); }},
        {"appendPartitionSuffix", [&module, device] { module.appendPartitionSuffix(device, 3); }},
        {"removePartitionSuffix",
         [&module, device] {
             unsigned int number = 7;
             module.removePartitionSuffix(device, number);
         }},
    };
}

#endif

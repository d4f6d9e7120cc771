// What `dmpclaim show -r -` is measured against: a minimal host that reads the same lines, asks the
// library the same questions and prints the same rows with stdio. Its lines need no escaping.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"

namespace {

const char* ownerName(const CDmpDeviceClaimBase* owner)
{
    if (owner == nullptr)
        return "-";
    if (dynamic_cast<const CDmpDeviceMapperClaim*>(owner) != nullptr)
        return "device-mapper";
    return dynamic_cast<const CDmpPowerPathClaim*>(owner) != nullptr ? "powerpath" : "native";
}

/// The driver writes the number only when it reads it back.
bool isWritten(CDmpClaimManager& manager, const std::string& path, unsigned int number)
{
    if (number != 0x5eed5eed)
        return true;
    number = 0xdeafdeaf;
    manager.removePartitionSuffix(path, number);
    return number != 0xdeafdeaf;
}

void printRow(CDmpClaimManager& manager, const std::string& path)
{
    CDmpDeviceClaimBase* owner = nullptr;
    const unsigned int claim = manager.getClaimModule(owner, path);
    if (owner == nullptr) {
        std::printf("%s - %u no - -\n", path.c_str(), claim);
        return;
    }
    unsigned int number = 0x5eed5eed;
    const std::string disk = manager.removePartitionSuffix(path, number);
    const bool isPartition = manager.isPartition(path);
    std::printf("%s %s %u %s %s ", path.c_str(), ownerName(owner), claim,
                isPartition ? "yes" : "no", disk.c_str());
    if (isPartition && isWritten(manager, path, number))
        std::printf("%u\n", number);
    else
        std::printf("-\n");
}

} // namespace

int main()
{
    CDmpClaimManager manager;
    char* line = nullptr;
    std::size_t size = 0;
    for (ssize_t length = 0; (length = getline(&line, &size, stdin)) > 0;)
        printRow(manager, std::string(line, static_cast<std::size_t>(length - 1)));
    std::free(line);
}

// A host with a claim module of its own, for the names of NVMe disks.

#include <cctype>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_claim_manager.h"

namespace {

constexpr char prefix[] = "/dev/nvme";

bool isDigit(char character)
{
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

/// Names of the NVMe driver: partition = disk "p" digit+, as in /dev/nvme0n1p1.
class NvmeClaim : public CDmpDeviceClaimBase {
public:
    std::vector<std::string> getDeviceClaimStrings() override { return {prefix}; }

    std::uint32_t claim(std::string device) override
    {
        return device.compare(0, sizeof prefix - 1, prefix) == 0 ? CLAIM_DEFAULT : CLAIM_NONE;
    }

    bool isPartition(std::string device) override { return diskLength(device) < device.size(); }

    std::string appendPartitionSuffix(std::string device, unsigned int partnum) override
    {
        return device + 'p' + std::to_string(partnum);
    }

    /// Writes the number of a partition, and leaves it alone for any other path.
    std::string removePartitionSuffix(std::string device, unsigned int& partnum) override
    {
        const std::size_t length = diskLength(device);
        if (length < device.size())
            partnum = static_cast<unsigned int>(std::stoul(device.substr(length + 1)));
        return device.substr(0, length);
    }

private:
    /// Where "p" and the number begin; the whole length when the path does not end in them.
    static std::size_t diskLength(const std::string& device)
    {
        std::size_t digits = device.size();
        while (digits > 0 && isDigit(device[digits - 1]))
            --digits;
        const bool isSuffix = digits < device.size() && device.size() - digits <= 9 && digits > 1 &&
                              device[digits - 1] == 'p' && isDigit(device[digits - 2]);
        return isSuffix ? digits - 1 : device.size();
    }
};

} // namespace

int main()
{
    CDmpClaimManager manager;
    auto module = std::make_unique<NvmeClaim>();
    manager.registerClaimModule(module.get());
    static_cast<void>(module.release()); // The manager deletes it from here on.

    for (const char* path : {"/dev/nvme0n1", "/dev/nvme0n1p1", "/dev/sdc2"}) {
        unsigned int partnum = 0;
        const std::string disk = manager.removePartitionSuffix(path, partnum);
        std::printf("%s: claim %u, %s of %s, number %u\n", path, manager.claim(path),
                    manager.isPartition(path) ? "partition" : "whole", disk.c_str(), partnum);
    }
    std::printf("%s\n", manager.appendPartitionSuffix("/dev/nvme0n1", 12).c_str());
    // The prefixes of the module that came last are the first.
    std::printf("%s\n", manager.getDeviceClaimStrings().front().c_str());
}

#include "benchmarks/plain_names.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace plain {

namespace {

bool contains(const std::string& text, std::string_view marker)
{
    return text.find(marker) != std::string::npos;
}

bool endsInDigit(const std::string& text)
{
    return text.back() >= '0' && text.back() <= '9';
}

std::string numbered(std::string disk, unsigned int number)
{
    return disk += std::to_string(static_cast<int>(number));
}

/// Cuts the digits at the end off, and returns where they were.
std::string withoutDigits(std::string partition, unsigned int& number)
{
    const std::size_t end = partition.find_last_not_of("0123456789") + 1;
    number = static_cast<unsigned int>(std::strtol(partition.c_str() + end, nullptr, 10));
    partition.resize(end);
    return partition;
}

class Native : public Driver {
public:
    std::vector<std::string> prefixes() override { return {"/dev/sd"}; }

    std::uint32_t claim(std::string device) override
    {
        for (const std::string& prefix : prefixes()) {
            if (prefix.size() < device.size() && contains(device, prefix))
                return 2;
        }
        return 0;
    }

    bool isPartition(std::string device) override
    {
        return device.size() > 2 && endsInDigit(device);
    }

    /// Cuts the disk at a NUL and the partition to 1023 characters.
    std::string append(std::string disk, unsigned int number) override
    {
        char partition[1024];
        static_cast<void>(std::snprintf(partition, sizeof partition, "%s%d", disk.c_str(),
                                        static_cast<int>(number)));
        return partition;
    }

    std::string strip(std::string partition, unsigned int& number) override
    {
        if (!contains(partition, "/dev/sd") || !endsInDigit(partition))
            return partition;
        return withoutDigits(std::move(partition), number);
    }
};

class PowerPath : public Driver {
public:
    std::vector<std::string> prefixes() override { return {"/dev/emcpower"}; }

    std::uint32_t claim(std::string device) override
    {
        for (const std::string& prefix : prefixes()) {
            if (contains(device, prefix))
                return 16;
        }
        return 0;
    }

    bool isPartition(std::string device) override
    {
        return contains(device, "/dev/emcpower") && endsInDigit(device);
    }

    std::string append(std::string disk, unsigned int number) override
    {
        return numbered(std::move(disk), number);
    }

    std::string strip(std::string partition, unsigned int& number) override
    {
        if (!contains(partition, "emcpower"))
            return partition;
        return withoutDigits(std::move(partition), number);
    }
};

class DeviceMapper : public Driver {
public:
    std::vector<std::string> prefixes() override { return {"/dev/mapper/"}; }

    std::uint32_t claim(std::string device) override
    {
        return contains(device, "/dev/mapper/") && device.find('-') == std::string::npos ? 16 : 0;
    }

    bool isPartition(std::string device) override
    {
        return contains(device, "/dev/mapper") && endsInPartition(device);
    }

    std::string append(std::string disk, unsigned int number) override
    {
        return numbered(std::move(disk += 'p'), number);
    }

    std::string strip(std::string partition, unsigned int& number) override
    {
        if (!contains(partition, "/dev/mapper/"))
            return partition;
        if (endsInPartition(partition))
            partition.resize(partition.size() - 2);
        else
            number = 0;
        return partition;
    }

private:
    static bool endsInPartition(const std::string& device)
    {
        return endsInDigit(device) && device[device.size() - 2] == 'p';
    }
};

} // namespace

Manager::Manager()
{
    m_drivers.push_back(std::make_unique<Native>());
    m_drivers.push_back(std::make_unique<PowerPath>());
    m_drivers.push_back(std::make_unique<DeviceMapper>());
}

std::uint32_t Manager::claim(std::string device)
{
    Driver* owner = nullptr;
    return findOwner(owner, std::move(device));
}

bool Manager::isPartition(std::string device)
{
    Driver* owner = nullptr;
    findOwner(owner, device);
    return owner != nullptr && owner->isPartition(std::move(device));
}

std::string Manager::append(std::string disk, unsigned int number)
{
    Driver* owner = nullptr;
    findOwner(owner, disk);
    return owner == nullptr ? std::string() : owner->append(std::move(disk), number);
}

std::string Manager::strip(std::string partition, unsigned int& number)
{
    Driver* owner = nullptr;
    findOwner(owner, partition);
    return owner == nullptr ? std::string() : owner->strip(std::move(partition), number);
}

std::uint32_t Manager::findOwner(Driver*& owner, std::string device)
{
    std::uint32_t strongest = 0;
    for (const auto& driver : m_drivers) {
        const std::uint32_t result = driver->claim(device);
        if (result > strongest) {
            strongest = result;
            owner = driver.get();
        }
    }
    return strongest;
}

} // namespace plain

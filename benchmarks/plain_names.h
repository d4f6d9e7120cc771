#ifndef BENCHMARKS_PLAIN_NAMES_H
#define BENCHMARKS_PLAIN_NAMES_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The naming questions as one would write them without tracing, to the same contract: strings by
/// value, a driver's prefixes asked through their virtual slot, the strongest claim of all drivers.
namespace plain {

class Driver {
public:
    Driver() = default;
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;
    virtual ~Driver() = default;

    virtual std::vector<std::string> prefixes() = 0;
    virtual std::uint32_t claim(std::string device) = 0;
    virtual bool isPartition(std::string device) = 0;
    virtual std::string append(std::string disk, unsigned int number) = 0;
    virtual std::string strip(std::string partition, unsigned int& number) = 0;
};

class Manager {
public:
    Manager();

    std::uint32_t claim(std::string device);
    bool isPartition(std::string device);
    std::string append(std::string disk, unsigned int number);
    std::string strip(std::string partition, unsigned int& number);

private:
    std::uint32_t findOwner(Driver*& owner, std::string device);

    std::vector<std::unique_ptr<Driver>> m_drivers;
};

} // namespace plain

#endif

#ifndef TESTS_SUPPORT_NAMING_EXAMPLE_H
#define TESTS_SUPPORT_NAMING_EXAMPLE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

/// One row of a table of names. The caller's number is 7 before the suffix is removed.
struct NamingExample {
    std::string device;
    std::uint32_t claim;
    bool isPartition;
    std::string disk;
    unsigned int number;
};

/// Checks every row against a module or the manager.
template <class Module>
void expectExamples(Module& module, const std::vector<NamingExample>& examples)
{
    for (const NamingExample& example : examples) {
        SCOPED_TRACE(example.device.substr(0, 80));
        unsigned int number = 7;
        EXPECT_EQ(module.claim(example.device), example.claim);
        EXPECT_EQ(module.isPartition(example.device), example.isPartition);
        EXPECT_EQ(module.removePartitionSuffix(example.device, number), example.disk);
        EXPECT_EQ(number, example.number);
    }
}

#endif

#ifndef TESTS_SUPPORT_CLAIMING_BY_H
#define TESTS_SUPPORT_CLAIMING_BY_H

#include <string>
#include <utility>
#include <vector>

/// A class derived from Module that claims by a list of its own.
template <class Module>
class ClaimingBy : public Module {
public:
    explicit ClaimingBy(std::vector<std::string> strings) : m_strings(std::move(strings)) {}
    std::vector<std::string> getDeviceClaimStrings() override { return m_strings; }

private:
    std::vector<std::string> m_strings;
};

#endif

#ifndef TESTS_SUPPORT_BUILT_IN_MODULES_H
#define TESTS_SUPPORT_BUILT_IN_MODULES_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "providers/device/scsitool/dmp_built_in_modules.h"

template <class... Modules>
std::vector<std::string> claimStringsOf(ModuleList<Modules...> /*modules*/)
{
    std::vector<std::string> strings;
    for (const std::vector<std::string>& own : {Modules().getDeviceClaimStrings()...})
        strings.insert(strings.begin(), own.begin(), own.end());
    return strings;
}

template <class... Modules>
constexpr int countOf(ModuleList<Modules...> /*modules*/)
{
    return sizeof...(Modules);
}

template <class... Others, class... Modules>
testing::Types<Others..., Modules...> typesOf(ModuleList<Modules...> modules);

/// The types of a typed test: these others, and the built-in modules.
template <class... Others>
using BuiltInModulesAnd = decltype(typesOf<Others...>(BuiltInModules()));

inline constexpr int builtInModules = countOf(BuiltInModules());

/// What a manager lists: the claim strings of the host's modules, then those of the built-in ones,
/// the last module's first.
inline std::vector<std::string> claimStrings(std::vector<std::string> hosts = {})
{
    const std::vector<std::string> builtIn = claimStringsOf(BuiltInModules());
    hosts.insert(hosts.end(), builtIn.begin(), builtIn.end());
    return hosts;
}

#endif

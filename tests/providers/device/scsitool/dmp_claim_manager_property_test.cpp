// Properties for any name and any number: modules and manager agree with a second implementation of
// the naming rules, and removing a suffix that was appended gives the name back.
#include "providers/device/scsitool/dmp_claim_manager.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"
#include "tests/support/host_module.h"
#include "tests/support/names_model.h"

namespace {

using Fragments = std::vector<std::string>;

/// A piece of a device path: markers of the rules, near-misses, and random bytes.
rc::Gen<std::string> fragment()
{
    using namespace std::string_literals;
    return rc::gen::weightedOneOf<std::string>(
        {{3, rc::gen::elementOf(model::markers)},
         {4, rc::gen::element<std::string>("p", "part", "-", "/", "a", "P", "\0"s, "\xb2", " ")},
         {4, rc::gen::element<std::string>("0", "1", "7", "9", "10", "4294967296")},
         {1, rc::gen::string<std::string>()}});
}

rc::Gen<std::string> anyName()
{
    return rc::gen::map(rc::gen::container<Fragments>(fragment()), [](const Fragments& fragments) {
        std::string name;
        for (const std::string& piece : fragments)
            name += piece;
        return name;
    });
}

/// A name that begins with `prefix` and ends in something else than a digit.
rc::Gen<std::string> diskName(const std::string& prefix)
{
    return rc::gen::map(anyName(), [prefix](const std::string& name) {
        return model::splitDigits(prefix + name).first;
    });
}

rc::Gen<unsigned int> anyNumber()
{
    return rc::gen::oneOf(rc::gen::arbitrary<unsigned int>(),
                          rc::gen::element(0U, 9U, 10U, 2147483647U, 2147483648U, 4294967295U));
}

/// Numbers that a signed decimal spells without a sign.
rc::Gen<unsigned int> countingNumber()
{
    return rc::gen::map(anyNumber(), [](unsigned int number) { return number & 0x7fffffffU; });
}

template <class Module>
void answersAsTheRulesSay(const std::string& name, unsigned int number)
{
    Module module;
    RC_ASSERT(answerOf(module, name, number) == model::rules<Module>(name, number));
}

template <class... Modules>
void answerAsTheRulesSay(ModuleList<Modules...> /*modules*/)
{
    const std::string name = *anyName();
    const unsigned int number = *anyNumber();
    (answersAsTheRulesSay<Modules>(name, number), ...);
}

RC_GTEST_PROP(AnyName, IsAnsweredByEveryModuleAsTheRulesSay, ())
{
    answerAsTheRulesSay(BuiltInModules());
}

RC_GTEST_PROP(AnyName, IsAnsweredByTheManagerAsTheRulesSayAgainAndAgain, ())
{
    CDmpClaimManager manager;
    const std::string name = *anyName();
    const unsigned int number = *anyNumber();
    RC_ASSERT(answerOf(manager, name, number) == model::rules<CDmpClaimManager>(name, number));
    RC_ASSERT(answerOf(manager, name, number) == model::rules<CDmpClaimManager>(name, number));
}

RC_GTEST_PROP(AnyDeviceMapperDisk, ComesBackForOneDigitAndTheNumberDoesNot, ())
{
    CDmpDeviceMapperClaim module;
    const std::string disk = "/dev/mapper/" + *anyName();
    const std::string partition = module.appendPartitionSuffix(disk, *rc::gen::inRange(0U, 10U));
    unsigned int number = 77;
    RC_ASSERT(module.isPartition(partition));
    RC_ASSERT(module.removePartitionSuffix(partition, number) == disk);
    RC_ASSERT(number == 77U);
}

RC_GTEST_PROP(AnyDeviceMapperDisk, IsNotFoundAgainForANumberOfMoreThanOneDigit, ())
{
    CDmpDeviceMapperClaim module;
    const std::string disk = "/dev/mapper/" + *anyName();
    const unsigned int large = *rc::gen::suchThat(anyNumber(), [](unsigned n) { return n > 9; });
    const std::string partition = module.appendPartitionSuffix(disk, large);
    unsigned int number = 77;
    RC_ASSERT(!module.isPartition(partition));
    RC_ASSERT(module.removePartitionSuffix(partition, number) == partition);
    RC_ASSERT(number == 0U);
}

RC_GTEST_PROP(AnyPowerPathDisk, ComesBackWithItsNumber, ())
{
    CDmpPowerPathClaim module;
    const std::string disk = *diskName("/dev/emcpower");
    const unsigned int appended = *countingNumber();
    const std::string partition = module.appendPartitionSuffix(disk, appended);
    unsigned int number = 77;
    RC_ASSERT(module.isPartition(partition));
    RC_ASSERT(module.removePartitionSuffix(partition, number) == disk);
    RC_ASSERT(number == appended);
}

RC_GTEST_PROP(AnyPowerPathDisk, KeepsTheMinusOfANegativeNumber, ())
{
    CDmpPowerPathClaim module;
    const std::string disk = *diskName("/dev/emcpower");
    const unsigned int appended = *countingNumber() | 0x80000000U;
    const std::string partition = module.appendPartitionSuffix(disk, appended);
    unsigned int number = 77;
    RC_ASSERT(module.removePartitionSuffix(partition, number) == disk + "-");
    RC_ASSERT(number == 0U - appended);
}

RC_GTEST_PROP(AnyNativeDisk, ComesBackWithItsNumber, ())
{
    CNativePathClaim module;
    const std::string disk = *rc::gen::suchThat(diskName("/dev/sd"), [](const std::string& name) {
        return name.size() <= 1013 && name.find('\0') == std::string::npos;
    });
    const unsigned int appended = *countingNumber();
    const std::string partition = module.appendPartitionSuffix(disk, appended);
    unsigned int number = 77;
    RC_ASSERT(module.isPartition(partition));
    RC_ASSERT(module.removePartitionSuffix(partition, number) == disk);
    RC_ASSERT(number == appended);
}

/// Removing once leaves nothing to remove.
template <class Module>
void removesAllAtOnce(const std::string& name)
{
    Module module;
    unsigned int number = 77;
    const std::string disk = module.removePartitionSuffix(name, number);
    RC_ASSERT(module.removePartitionSuffix(disk, number) == disk);
}

RC_GTEST_PROP(AnyName, LosesAllItsDigitsAtOnce, ())
{
    const std::string name = *anyName();
    removesAllAtOnce<CDmpPowerPathClaim>(name);
    removesAllAtOnce<CNativePathClaim>(name);
}

RC_GTEST_PROP(AnyName, LosesOneDeviceMapperSuffixAtATime, ())
{
    CDmpDeviceMapperClaim module;
    const std::string disk = "/dev/mapper/" + *anyName() + "p1";
    unsigned int number = 77;
    RC_ASSERT(module.removePartitionSuffix(disk + "p2", number) == disk);
}

/// The first module with the strongest claim; none when no claim is above zero.
std::size_t strongest(const std::vector<std::uint32_t>& claims)
{
    std::size_t winner = claims.size();
    for (std::size_t i = claims.size(); i-- > 0;) {
        if (claims[i] != 0 && (winner == claims.size() || claims[i] >= claims[winner]))
            winner = i;
    }
    return winner;
}

RC_GTEST_PROP(AnyListOfHostModules, IsWonByTheFirstOfTheStrongest, ())
{
    const auto claim = rc::gen::oneOf(rc::gen::arbitrary<std::uint32_t>(),
                                      rc::gen::element<std::uint32_t>(0, 1, 2, 16, 17));
    const auto claims = *rc::gen::container<std::vector<std::uint32_t>>(claim);
    Journal journal;
    CDmpClaimManager manager;
    std::vector<CDmpDeviceClaimBase*> modules;
    for (const std::uint32_t result : claims) {
        modules.push_back(new HostModule(journal, "x", result));
        manager.registerClaimModule(modules.back());
    }
    modules.push_back(nullptr);
    CDmpDeviceClaimBase* owner = nullptr;
    manager.getClaimModule(owner, "/dev/vda");
    RC_ASSERT(owner == modules[strongest(claims)]);
    RC_ASSERT(journal.size() == claims.size());
}

} // namespace

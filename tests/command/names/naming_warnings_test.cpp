#include "names/naming_warnings.h"

#include <gmock/gmock.h>

#include "names/drivers.h"

using command::Warning;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// The warnings for what the library says of the path.
std::vector<Warning> namingWarnings(const std::string& path)
{
    CDmpClaimManager manager;
    CDmpDeviceClaimBase* owner = nullptr;
    std::vector<Warning> warnings;
    if (manager.getClaimModule(owner, path) == CLAIM_NONE) {
        command::warnOfUnclaimedName({path, "", false, ""}, warnings);
        return warnings;
    }
    unsigned int number = 0;
    command::warnOfClaimedName({path, owner->getDeviceClaimStrings().front(),
                                manager.isPartition(path),
                                manager.removePartitionSuffix(path, number)},
                               command::driverOf(owner)->warnOfName, warnings);
    return warnings;
}

std::vector<std::string> codes(const std::string& path)
{
    std::vector<std::string> result;
    for (const Warning& warning : namingWarnings(path))
        result.push_back(warning.code);
    return result;
}

/// The text of the first warning.
std::string text(const std::string& path)
{
    const std::vector<Warning> warnings = namingWarnings(path);
    return warnings.empty() ? "" : warnings.front().text;
}

TEST(NamingWarnings, PlainNamesOfTheNumberedDriversGiveNone)
{
    for (const char* path : {"/dev/sda", "/dev/sdaa12", "/dev/sda0", "/dev/sda4294967295",
                             "/dev/emcpowerc", "/dev/emcpowera11"})
        EXPECT_THAT(codes(path), IsEmpty()) << path;
}

TEST(NamingWarnings, NamesOfOtherDriversGiveNone)
{
    for (const char* path : {"", "/", "/dev/vda-part1", "/dev/dm-3", "emcpowerd2", "/dev/sd",
                             "/dev/mapper", "/dev/mapper-part1"})
        EXPECT_THAT(codes(path), IsEmpty()) << path;
}

TEST(NamingWarnings, APrefixThatDoesNotBeginThePath)
{
    EXPECT_THAT(codes("/mnt/dev/sda1"), ElementsAre("prefix-not-at-start"));
    EXPECT_THAT(codes("/mnt/dev/emcpowera"), ElementsAre("prefix-not-at-start"));
    EXPECT_THAT(codes("/mnt/dev/mapper/"), ElementsAre("prefix-not-at-start"));
    EXPECT_THAT(text("/mnt/dev/sda1"), HasSubstr("'/dev/sd' stands inside this path"));
}

TEST(NamingWarnings, UdevsPartitionNames)
{
    EXPECT_THAT(codes("/dev/mapper/mpatha-part3"), ElementsAre("udev-partition-name"));
    EXPECT_THAT(text("/dev/mapper/mpatha-part12"),
                AllOf(HasSubstr("'-part12'"), HasSubstr("name partition 12."),
                      HasSubstr("Ask about the disk, /dev/mapper/mpatha.")));
    EXPECT_THAT(codes("/dev/mapper/my-disk-part3"), ElementsAre("udev-partition-name", "hyphen"));
}

TEST(NamingWarnings, AHyphenAnywhere)
{
    for (const char* path : {"/dev/mapper/vg-lv", "/data-1/dev/mapper/mpathc",
                             "/dev/mapper/mpatha-part", "/dev/mapper/mpatha-p1"})
        EXPECT_THAT(codes(path), ElementsAre("hyphen")) << path;
    EXPECT_THAT(text("/dev/mapper/vg-lv"), HasSubstr("alias without '-'"));
}

TEST(NamingWarnings, APartitionAfterALetterIsNamedDifferentlyByTheDigitRule)
{
    EXPECT_THAT(codes("/dev/mapper/mpathbp2"), ElementsAre("p-and-digit"));
    EXPECT_THAT(text("/dev/mapper/mpathbp2"),
                AllOf(HasSubstr("partition 2 of /dev/mapper/mpathb,"), HasSubstr("alias"),
                      HasSubstr("call that partition /dev/mapper/mpathb2.")));
}

TEST(NamingWarnings, APartitionAfterADigitIsNamedTheSameByTheDigitRule)
{
    EXPECT_THAT(codes("/dev/mapper/mpath1p2"), ElementsAre("p-and-digit"));
    EXPECT_THAT(text("/dev/mapper/mpath1p2"), AllOf(HasSubstr("partition 2 of /dev/mapper/mpath1,"),
                                                    Not(HasSubstr("call that partition"))));
    EXPECT_THAT(text("/dev/mapper/p1"), Not(HasSubstr("call that partition")));
}

TEST(NamingWarnings, TwoDigitsAfterAP)
{
    for (const char* path : {"/dev/mapper/mpathbp12", "/dev/mapper/mpathbp007", "/dev/mapper/p10"})
        EXPECT_THAT(codes(path), ElementsAre("two-digits-behind-p")) << path;
    EXPECT_THAT(text("/dev/mapper/mpathbp12"),
                AllOf(HasSubstr("partition 12 of /dev/mapper/mpathb,"),
                      HasSubstr("ask about /dev/mapper/mpathb.")));
}

TEST(NamingWarnings, ADiskThatTheDigitRuleTakesForAPartition)
{
    for (const char* path :
         {"/dev/mapper/mpath1", "/dev/mapper/mpath23", "/dev/mapper/3600a0b8", "/dev/mapper/LUN7"})
        EXPECT_THAT(codes(path), ElementsAre("digit-behind-letter", "other-partition-names"))
            << path;
    EXPECT_THAT(text("/dev/mapper/mpath23"), AllOf(HasSubstr("partition 23 of /dev/mapper/mpath."),
                                                   HasSubstr("ask about /dev/mapper/mpath.")));
}

TEST(NamingWarnings, ADiskWhosePartitionsOthersNameDifferently)
{
    for (const char* path : {"/dev/mapper/mpatha", "/dev/mapper/360", "/dev/mapper/a_1",
                             "/dev/mapper/a{1", "/dev/mapper/mpathp", "/dev/mapper/dev/sda"})
        EXPECT_THAT(codes(path), ElementsAre("other-partition-names")) << path;
    EXPECT_THAT(text("/dev/mapper/mpatha"),
                AllOf(HasSubstr("this disk /dev/mapper/mpathap1;"),
                      HasSubstr("/dev/mapper/mpatha1, and"),
                      HasSubstr("udev calls it /dev/mapper/mpatha-part1.")));
    EXPECT_THAT(text("/dev/mapper/360"),
                AllOf(HasSubstr("/dev/mapper/360p1; udev calls it /dev/mapper/360-part1."),
                      Not(HasSubstr("ends in a letter"))));
}

TEST(NamingWarnings, TheMapperFolderItselfNamesNoDisk)
{
    EXPECT_THAT(codes("/dev/mapper/"), IsEmpty());
}

TEST(NamingWarnings, ANumberWithoutADisk)
{
    EXPECT_THAT(codes("/dev/emcpower15"), ElementsAre("no-disk-letters"));
    EXPECT_THAT(codes("/dev/sd1"), ElementsAre("no-disk-letters"));
    EXPECT_THAT(codes("/dev/emcpower"), ElementsAre("no-disk-letters"));
    EXPECT_THAT(text("/dev/sd1"), HasSubstr("follow '/dev/sd', so the disk is said to be "
                                            "'/dev/sd'"));
}

TEST(NamingWarnings, OtherCharactersThanADisksLetters)
{
    for (const char* path : {"/dev/sda\r", "/dev/sda ", "/dev/sd-a1", "/dev/sdA", "/dev/sd{a}",
                             "/dev/emcpowerc/x9", "/dev/sda1x2"})
        EXPECT_THAT(codes(path), ElementsAre("unusual-name")) << path;
    EXPECT_THAT(text("/dev/sda1x2"), HasSubstr("'a1x' stands where"));
    EXPECT_THAT(codes("/dev/sd/dev/sda1"), IsEmpty());
}

TEST(NamingWarnings, NumbersThatDoNotFit)
{
    EXPECT_THAT(codes("/dev/sda4294967296"), ElementsAre("number-too-large"));
    EXPECT_THAT(codes("/dev/emcpowera0099999999999999999999"), ElementsAre("number-too-large"));
    EXPECT_THAT(text("/dev/sda4294967296"), HasSubstr("The number 4294967296 does not fit"));
}

TEST(NamingWarnings, LeadingZeros)
{
    EXPECT_THAT(codes("/dev/sdc007"), ElementsAre("leading-zeros"));
    EXPECT_THAT(codes("/dev/emcpowerc00"), ElementsAre("leading-zeros"));
    EXPECT_THAT(text("/dev/sdc007"),
                AllOf(HasSubstr("reads 007 as 7,"), HasSubstr("that partition /dev/sdc7,")));
}

TEST(NamingWarnings, SeveralAtOnce)
{
    EXPECT_THAT(codes("/x/dev/sd007"),
                ElementsAre("prefix-not-at-start", "no-disk-letters", "leading-zeros"));
}

} // namespace

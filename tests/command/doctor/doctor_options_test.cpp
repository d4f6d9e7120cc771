#include "doctor/doctor_options.h"

#include <gmock/gmock.h>

#include "cli/usage_error.h"
#include "commands.h"

namespace {

using command::DoctorForm;
using command::DoctorOptions;
using std::chrono::seconds;

DoctorOptions optionsOf(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "doctor");
    const auto parsed = command::parseOptions(arguments, command::subcommands());
    return command::doctorOptions(std::get<command::Options>(parsed));
}

TEST(DoctorOptions, OnlyAPluginHasATimeLimitByItself)
{
    EXPECT_EQ(optionsOf({"--check"}).timeout, seconds(10));
    EXPECT_EQ(optionsOf({"--check", "--timeout", "3"}).timeout, seconds(3));
    for (const char* form : {"--metrics", "-J", "--json-lines", "--quiet"})
        EXPECT_EQ(optionsOf({form}).timeout, std::nullopt) << form;
    EXPECT_EQ(optionsOf({"--timeout", "3"}).timeout, seconds(3));
}

TEST(DoctorOptions, AFormIsWhatTheUserChose)
{
    EXPECT_EQ(optionsOf({}).form, DoctorForm::text);
    EXPECT_EQ(optionsOf({"-J"}).form, DoctorForm::json);
    EXPECT_EQ(optionsOf({"--json-lines"}).form, DoctorForm::jsonLines);
    EXPECT_EQ(optionsOf({"--check"}).form, DoctorForm::check);
    EXPECT_EQ(optionsOf({"--metrics"}).form, DoctorForm::metrics);
    EXPECT_EQ(optionsOf({"--codes"}).form, DoctorForm::codes);
}

TEST(DoctorOptions, DisksAreAskedAboutOneByOneUnlessMoreAreWanted)
{
    EXPECT_EQ(optionsOf({}).jobs, 1U);
    EXPECT_EQ(optionsOf({"-j", "64"}).jobs, 64U);
    EXPECT_EQ(optionsOf({}).expectedPaths, 0U);
}

TEST(DoctorOptions, NumbersHaveTheirRanges)
{
    EXPECT_EQ(optionsOf({"--timeout", "86400"}).timeout, seconds(86400));
    for (const char* jobs : {"0", "65", "x"})
        EXPECT_THAT(
            [&] {
                optionsOf({"-j", jobs});
            },
            testing::ThrowsMessage<command::UsageError>(
                std::string("--jobs takes a number from 1 to 64, not '") + jobs + "'"));
    EXPECT_THAT(
        [] {
            optionsOf({"--timeout", "86401"});
        },
        testing::ThrowsMessage<command::UsageError>(
            "--timeout takes a number from 1 to 86400, not '86401'"));
}

} // namespace

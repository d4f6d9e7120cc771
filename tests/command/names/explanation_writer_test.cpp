#include "names/explanation_writer.h"

#include <gmock/gmock.h>

#include "tests/command/output/captured_output.h"

using testing::HasSubstr;

namespace {

std::string textOf(const std::vector<std::string>& paths)
{
    CDmpClaimManager manager;
    const auto modules = command::makeModules({});
    CapturedOutput output;
    command::ExplanationWriter writer(command::Form::text, output.stream());
    for (const std::string& path : paths)
        writer.write(command::explanation(manager, modules, path));
    writer.finish();
    return output.text();
}

TEST(ExplanationWriter, APartitionWhoseNumberIsReadBack)
{
    EXPECT_THAT(
        textOf({"/dev/sdb12"}),
        testing::StartsWith(
            "/dev/sdb12\n"
            "  owner          native (only claim)\n"
            "  partition      yes\n"
            "  disk           /dev/sdb\n"
            "  partnum        12\n"
            "  native          2  claims it, a 16 would win        (prefix /dev/sd)\n"
            "  powerpath       0  does not claim it                (prefix /dev/emcpower)\n"
            "  device-mapper   0  does not claim it                (prefix /dev/mapper/)\n"));
}

TEST(ExplanationWriter, AModuleMayClaimWithAnyNumber)
{
    CDmpClaimManager manager;
    command::Explanation device =
        command::explanation(manager, command::makeModules({}), "/dev/sda");
    device.modules[1].claim = 7;
    CapturedOutput output;
    command::ExplanationWriter writer(command::Form::text, output.stream());
    writer.write(device);
    writer.finish();
    EXPECT_THAT(output.text(),
                HasSubstr("  powerpath       7  claims it                        (prefix "));
}

TEST(ExplanationWriter, WarningsAreWrapped)
{
    const std::string text = textOf({"/dev/mapper/mpathbp2"});
    EXPECT_THAT(
        text, testing::StartsWith(
                  "/dev/mapper/mpathbp2\n"
                  "  owner          device-mapper (only claim)\n"
                  "  partition      yes\n"
                  "  disk           /dev/mapper/mpathb\n"
                  "  partnum        - (this driver does not read it back)\n"
                  "  native          0  does not claim it                (prefix /dev/sd)\n"
                  "  powerpath       0  does not claim it                (prefix /dev/emcpower)\n"
                  "  device-mapper  16  claims it as a multipath driver  (prefix /dev/mapper/)\n"));
    EXPECT_THAT(
        text,
        testing::EndsWith(
            "  warning        For the library the 'p2' at the end makes this partition 2 of\n"
            "                 /dev/mapper/mpathb, but the alias of a disk may end like that,\n"
            "                 too. Tools that put the number directly behind a name that\n"
            "                 ends in a letter call that partition /dev/mapper/mpathb2.\n"));
}

TEST(ExplanationWriter, AWholeDiskHasNoNumber)
{
    const std::string text = textOf({"/dev/sda"});
    EXPECT_THAT(text, HasSubstr("  partition      no\n  disk           /dev/sda\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("partnum")));
}

TEST(ExplanationWriter, APathThatNobodyClaims)
{
    EXPECT_THAT(textOf({"/dev/vda"}),
                testing::StartsWith("/dev/vda\n"
                                    "  owner          - (nobody claims this path)\n"));
}

TEST(ExplanationWriter, AnEmptyLineStandsBetweenPaths)
{
    EXPECT_THAT(textOf({"/dev/vda", "/dev/vdb"}), HasSubstr(")\n\n/dev/vdb\n"));
}

TEST(ExplanationWriter, NamesAreMadePrintable)
{
    const std::string text = textOf({"/dev/sda\r\n"});
    EXPECT_THAT(text, testing::StartsWith("/dev/sda\\x0d\\x0a\n"));
    EXPECT_THAT(text, HasSubstr("disk           /dev/sda\\x0d\\x0a\n"));
    EXPECT_THAT(text, HasSubstr("warning        'a\\x0d\\x0a' stands"));
}

TEST(ExplanationWriter, AWordThatFitsNoLineGetsItsOwn)
{
    const std::string disk = "/dev/mapper/" + std::string(100, 'x');
    EXPECT_THAT(textOf({disk + "p2"}), HasSubstr("of\n                 " + disk + ",\n"));
}

} // namespace

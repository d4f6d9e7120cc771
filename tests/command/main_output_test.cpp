// The forms of output, with names that are hard to print.
#include <gmock/gmock.h>

#include "tests/command/dmpclaim.h"

namespace {

Result runIn(const std::string& locale, const std::vector<std::string>& arguments)
{
    Setting setting;
    setting.environment = {"LC_ALL=" + locale};
    return run(arguments, {}, setting);
}

TEST(Output, HeadingsCanBeLeftOut)
{
    EXPECT_EQ(run({"show", "/dev/sda", "-n"}).output, "/dev/sda native 2 no /dev/sda -\n");
    EXPECT_EQ(run({"show", "/dev/sda", "-n", "-r"}).output, "/dev/sda native 2 no /dev/sda -\n");
}

TEST(Output, ColumnsCanBeChosen)
{
    EXPECT_EQ(run({"show", "/dev/sda1", "-o", "partnum,disk"}).output, "PARTNUM DISK\n"
                                                                       "      1 /dev/sda\n");
    EXPECT_EQ(run({"show", "/dev/sda1", "-r", "-o", "+NAME"}).output,
              "NAME OWNER CLAIM PARTITION DISK PARTNUM\n/dev/sda1 native 2 yes /dev/sda 1\n");
}

TEST(Output, RawFieldsAreWords)
{
    EXPECT_EQ(run({"show", "/dev/sda b\n1", "-r", "-n", "-o", "name,disk"}).output,
              "/dev/sda\\x20b\\x0a1 /dev/sda\\x20b\\x0a\n");
    EXPECT_EQ(run({"strip", "/dev/sda b1", "-r"}).output, "/dev/sda\\x20b\n");
}

TEST(Output, TablesShowControlCharactersEscaped)
{
    EXPECT_EQ(run({"show", "/dev/sda\r\n\x1b", "-n", "-o", "name"}).output,
              "/dev/sda\\x0d\\x0a\\x1b\n");
}

TEST(Output, TablesShowWhatTheLocaleKnows)
{
    EXPECT_EQ(runIn("C.UTF-8", {"show", "/dev/sd\u00e4\xff", "-n", "-o", "name"}).output,
              "/dev/sd\u00e4\\xff\n");
    EXPECT_EQ(runIn("C", {"show", "/dev/sd\u00e4\xff", "-n", "-o", "name"}).output,
              "/dev/sd\\xc3\\xa4\\xff\n");
}

TEST(Output, BareAnswersAreUnaltered)
{
    EXPECT_EQ(run({"strip", "/dev/sd a\r\n\xff\u00e4\\1"}).output, "/dev/sd a\r\n\xff\u00e4\\\n");
}

TEST(Output, JsonReplacesBytesThatAreNotUtf8)
{
    const auto devices = runJson({"show", "/dev/sda\xff\u00e4\n\x01 1"})["devices"];
    EXPECT_EQ(devices[0]["name"], "/dev/sda\ufffd\u00e4\n\x01 1");
    EXPECT_EQ(devices[0]["disk"], "/dev/sda\ufffd\u00e4\n\x01 ");
}

TEST(Output, JsonKeepsBytesThatAreNotUtf8BesideTheReadableName)
{
    const auto device = runJson({"show", "/dev/sda\xff 1"})["devices"][0];
    EXPECT_EQ(device["name_raw"], "/dev/sda\\xff\\x201");
    EXPECT_EQ(device["disk_raw"], "/dev/sda\\xff\\x20");
    EXPECT_FALSE(runJson({"show", "/dev/sda1"})["devices"][0].contains("name_raw"));
}

TEST(Output, JsonLinesAreTheRowsOfTheDocument)
{
    const std::vector<std::string> paths{"/dev/sda1", "/dev/mapper/mpatha", "x"};
    for (const char* subcommand : {"show", "explain", "strip", "active"}) {
        std::vector<std::string> arguments{subcommand, "-o", "NAME"};
        if (subcommand == std::string("explain"))
            arguments = {subcommand};
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        nlohmann::ordered_json rows;
        const auto document = runJson(arguments);
        for (const auto& [key, value] : document.items()) {
            if (value.is_array())
                rows = value;
        }
        ASSERT_EQ(rows.size(), 3U);
        arguments.emplace_back("--json-lines");
        EXPECT_EQ(run(arguments).output,
                  rows[0].dump() + '\n' + rows[1].dump() + '\n' + rows[2].dump() + '\n');
    }
}

TEST(Output, AnswersMayEndInNul)
{
    const std::string_view input("/dev/sda b\n1\0/dev/sdb2", 22);
    EXPECT_EQ(run({"strip", "-", "-0z"}, input).output,
              std::string("/dev/sda b\n\0/dev/sdb\0", 21));
    EXPECT_EQ(run({"show", "-0z", "-o", "NAME", "-"}, input).output, std::string(input) + '\0');
}

TEST(Output, PairsAreReadByAShell)
{
    EXPECT_EQ(run({"show", "-P", "/dev/sda\"1", "-o", "NAME,PARTNUM,DISK"}).output,
              "NAME=\"/dev/sda\\x221\" PARTNUM=\"1\" DISK=\"/dev/sda\\x22\"\n");
}

TEST(Output, ColoursAreForTerminalsUnlessToldOtherwise)
{
    const std::string bold = "\x1b[1mOWNER\x1b[0m\n";
    EXPECT_EQ(run({"show", "-oowner", "/dev/sda"}).output, "OWNER\nnative\n");
    EXPECT_EQ(run({"show", "-oowner", "--color", "/dev/sda"}).output, bold + "native\n");
    EXPECT_THAT(run({"explain", "--color=always", "/dev/mapper/mpathb"}).output,
                testing::HasSubstr("\x1b[33mwarning        \x1b[0m"));
}

TEST(Output, JsonHoldsNulBytes)
{
    const auto document = runJson({"show", "-"}, std::string_view("/dev/sda\n/dev/sdb\0c1\n", 21));
    EXPECT_EQ(document["devices"][1]["disk"], std::string("/dev/sdb\0c", 10));
}

TEST(Output, TablesHoldNulBytes)
{
    const Result result =
        run({"show", "-", "-n", "-o", "disk"}, std::string_view("/dev/sda\n/dev/sdb\0c1\n", 21));
    EXPECT_EQ(result.output, "/dev/sda\n/dev/sdb\\x00c\n");
}

TEST(Output, NamesOfAMebibyteAreWhole)
{
    const std::string disk = "/dev/sd" + std::string(1 << 20, 'a');
    const std::string input = disk + "1\n/dev/sda\n";
    // Compared here, so that no failure prints a mebibyte.
    EXPECT_TRUE(run({"strip", "-"}, input).output == disk + "\n/dev/sda\n");
    EXPECT_TRUE(run({"show", "-", "-n", "-r"}, input).output ==
                disk + "1 native 2 yes " + disk + " 1\n/dev/sda native 2 no /dev/sda -\n");
    EXPECT_TRUE(run({"show", "-", "-o", "name,owner"}, input).output ==
                "NAME OWNER\n" + disk + "1 native\n/dev/sda native\n");
    EXPECT_TRUE(runJson({"show", "-"}, input)["devices"][0]["disk"] == disk);
    EXPECT_EQ(run({"explain", "-"}, input).output.find('\n'), disk.size() + 1);
}

} // namespace

// What each subcommand prints, and its exit status.
#include <filesystem>

#include <gmock/gmock.h>

#include "names/device_answer.h"
#include "tests/command/dmpclaim.h"
#include "tests/support/built_in_modules.h"

using testing::HasSubstr;

namespace {

constexpr char oneOfEach[] =
    "NAME                 OWNER         CLAIM PARTITION DISK               PARTNUM\n"
    "/dev/sdb12           native            2 yes       /dev/sdb                12\n"
    "/dev/emcpowerc       powerpath        16 no        /dev/emcpowerc           -\n"
    "/dev/mapper/mpathbp2 device-mapper    16 yes       /dev/mapper/mpathb       -\n"
    "/dev/vda1            -                 0 no        -                        -\n";

/// Runs the command and expects it to print `output`, and to end with `status`.
Result expectAnswer(const std::vector<std::string>& arguments, const std::string& output,
                    int status)
{
    Result result = run(arguments);
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.status, status);
    return result;
}

/// The same, and no message.
void expect(const std::vector<std::string>& arguments, const std::string& output, int status)
{
    EXPECT_EQ(expectAnswer(arguments, output, status).errors, "");
}

TEST(Show, PrintsARowForEachPath)
{
    expect({"show", "/dev/sdb12", "/dev/emcpowerc", "/dev/mapper/mpathbp2", "/dev/vda1"}, oneOfEach,
           64);
}

TEST(Show, TellsByItsStatusHowManyAreClaimed)
{
    EXPECT_EQ(run({"show", "/dev/sda", "/dev/emcpowera"}).status, 0);
    EXPECT_EQ(run({"show", "/dev/vda", "/dev/mapper/vg-lv"}).status, 32);
    EXPECT_EQ(run({"show", "/dev/sda", "/dev/vda"}).status, 64);
    EXPECT_EQ(run({"show", "/dev/vda", "/dev/sda"}).status, 64);
    EXPECT_EQ(run({"show", "-"}).status, 0);
}

TEST(Show, PrintsJson)
{
    EXPECT_EQ(runJson({"show", "/dev/sdb12", "/dev/vda"}).dump(),
              R"({"schema":1,"devices":[)"
              R"({"name":"/dev/sdb12","owner":"native","claim":2,"partition":true,)"
              R"("disk":"/dev/sdb","partnum":12},)"
              R"({"name":"/dev/vda","owner":null,"claim":0,"partition":false,)"
              R"("disk":null,"partnum":null}]})");
    EXPECT_EQ(runJson({"show", "-"}).dump(), R"({"schema":1,"devices":[]})");
}

TEST(PathsCommand, SaysWithoutAVolumeManagerWhatIsNoDisk)
{
    const Result result = run({"paths", "no-node"});
    EXPECT_EQ(result.errors, "dmpclaim: 'no-node' is no block device of this machine\n");
    EXPECT_EQ(result.status, 32);
}

TEST(List, HoldsEveryBlockDeviceOfTheKernel)
{
    const Result result = run({"list", "--all", "-n", "-r", "-o", "KNAME"});
    const std::string output = '\n' + result.output;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/block", error))
        EXPECT_THAT(output, HasSubstr('\n' + entry.path().filename().string() + '\n'));
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 0);
}

TEST(List, PrintsEveryColumnAsJson)
{
    const auto document = runJson({"list", "--all"});
    for (const auto& device : document["devices"])
        EXPECT_EQ(device.size(), command::deviceColumns().size()) << device;
}

TEST(Append, PrintsThePathOfThePartition)
{
    expectAnswer({"append", "/dev/mapper/mpathb", "2"}, "/dev/mapper/mpathbp2\n", 0);
    expectAnswer({"append", "/dev/emcpowerc", "12"}, "/dev/emcpowerc12\n", 0);
    expectAnswer({"append", "/dev/sda", "4294967295"}, "/dev/sda-1\n", 0);
    expectAnswer({"append", "/dev/vda", "2"}, "\n", 32);
}

TEST(Append, PrintsATableOfChosenColumns)
{
    expectAnswer({"append", "/dev/sda", "2", "-o", "+DISK,partnum"},
                 "NAME      DISK     PARTNUM\n"
                 "/dev/sda2 /dev/sda       2\n",
                 0);
}

TEST(Append, PrintsJson)
{
    EXPECT_EQ(runJson({"append", "/dev/mapper/mpathb", "2"}).dump(),
              R"({"schema":1,"partitions":[{"name":"/dev/mapper/mpathbp2",)"
              R"("disk":"/dev/mapper/mpathb","partnum":2,"owner":"device-mapper","claim":16}]})");
}

TEST(Strip, PrintsThePathsOfTheDisks)
{
    expectAnswer({"strip", "/dev/mapper/mpathbp2", "/dev/sda"}, "/dev/mapper/mpathb\n/dev/sda\n",
                 0);
    expectAnswer({"strip", "/dev/sda1", "/dev/vda1", "/dev/emcpowerc7"},
                 "/dev/sda\n\n/dev/emcpowerc\n", 64);
}

TEST(Strip, PrintsATableOfChosenColumns)
{
    expectAnswer({"strip", "/dev/sda12", "/dev/vda1", "-o", "+PARTNUM"},
                 "DISK     PARTNUM\n"
                 "/dev/sda      12\n"
                 "-              -\n",
                 64);
}

TEST(Strip, PrintsJson)
{
    EXPECT_EQ(runJson({"strip", "/dev/sda12", "-o", "disk"}).dump(),
              R"({"schema":1,"disks":[{"disk":"/dev/sda"}]})");
}

TEST(Prefixes, PrintsWhatTheDriversClaim)
{
    std::string lines;
    nlohmann::ordered_json document{{"schema", 1}, {"prefixes", nlohmann::ordered_json::array()}};
    for (const std::string& prefix : claimStrings()) {
        lines += prefix + '\n';
        document["prefixes"].push_back({{"prefix", prefix}});
    }
    expect({"prefixes"}, lines, 0);
    EXPECT_EQ(runJson({"prefixes", "-o", "prefix"}).dump(), document.dump());
    const Result owners = run({"prefixes", "-o", "+OWNER"});
    EXPECT_THAT(owners.output, testing::StartsWith("PREFIX        OWNER\n"));
    EXPECT_THAT(owners.output, testing::EndsWith("/dev/mapper/  device-mapper\n"
                                                 "/dev/emcpower powerpath\n"
                                                 "/dev/sd       native\n"));
}

TEST(Explain, PrintsWhyAPathIsClaimed)
{
    const Result result = run({"explain", "/dev/mapper/dev/sda1", "/dev/vda"});
    EXPECT_THAT(result.output, HasSubstr("  native          2  claims it, "));
    EXPECT_THAT(result.output, HasSubstr("  owner          device-mapper (strongest claim)\n"));
    EXPECT_THAT(result.output, HasSubstr("\n\n/dev/vda\n"));
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 64);
}

TEST(Explain, PrintsJson)
{
    const auto document = runJson({"explain", "/dev/mapper/mpathbp12"});
    EXPECT_EQ(document["schema"], 1);
    const auto& explanation = document["explanations"][0];
    EXPECT_EQ(explanation["rule"], "only claim");
    EXPECT_EQ(explanation["modules"].size(), command::drivers().size());
    EXPECT_EQ(explanation["warnings"][0]["code"], "two-digits-behind-p");
    EXPECT_EQ(runJson({"explain", "-"}).dump(), R"({"schema":1,"explanations":[]})");
}

TEST(Explain, ChangesNoAnswer)
{
    for (const char* path : {"/dev/mapper/mpathbp12", "/dev/mapper/mpath1", "/dev/sda007"}) {
        const auto explanation = runJson({"explain", path})["explanations"][0];
        const auto document = runJson({"show", path});
        for (const auto& [key, value] : document["devices"][0].items())
            EXPECT_EQ(explanation[key], value) << path << ' ' << key;
    }
}

} // namespace

#include "names/tool_name.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace std::string_literals;
using command::whyNotAsked;
using command::whyNotUsed;

TEST(ToolName, TheToolsAreAskedAboutNamesThatAreOneArgumentAndOneDisk)
{
    for (const char* path : {"/dev/sdc", "/dev/sdc12", "/dev/sd", "", "/dev/sd'\"$(x)`;|&><*?[]{}",
                             "/dev/sda\tb", "/dev/sda\nb", "/dev/sda=b", "/dev/sd\xff\xfe", "-rf"})
        EXPECT_EQ(whyNotAsked(path), nullptr) << path;
}

TEST(ToolName, TheToolsAreNotAskedAboutOtherNames)
{
    for (const std::string& path : {"/dev/sdc force=yes"s, "/dev/sdc "s, " /dev/sdc"s, " "s})
        EXPECT_STREQ(whyNotAsked(path), "it holds a space, which separates the arguments of the "
                                        "volume manager's tools");
    for (const std::string& path : {"/dev/sdc,sdd"s, "/dev/sdc,"s})
        EXPECT_STREQ(whyNotAsked(path), "it holds a comma, which separates the disks that the "
                                        "volume manager's tools scan");
    for (const std::string& path : {"/dev/sdc\0"s, "/dev/sdc\0d"s})
        EXPECT_STREQ(whyNotAsked(path), "it holds a NUL byte, which ends the arguments of the "
                                        "volume manager's tools");
}

TEST(ToolName, ActivePathsInDevAreUsed)
{
    for (const char* path : {"/dev/sdc", "/dev/cciss/c0d0", "/dev//sdc", "/dev/./sdc", "/dev/...",
                             "/dev/..x/x..", "/dev/s..", "/dev/sd\xc3\xa4"})
        EXPECT_EQ(whyNotUsed(path), nullptr) << path;
}

TEST(ToolName, ActivePathsThatLeaveDevAreNotUsed)
{
    for (const char* path :
         {"/dev/../x", "/dev/..", "/dev/disk/../../etc/shadow", "/dev//..//x", "/dev/a/.."})
        EXPECT_STREQ(whyNotUsed(path), "it leaves /dev") << path;
}

TEST(ToolName, ActivePathsThatNoDeviceHasAreNotUsed)
{
    for (const std::string& path : {"/dev/sd b"s, "/dev/sd\tb"s, "/dev/sdb\r"s, "/dev/sdb\x1b[2J"s,
                                    "/dev/sd\x7f"s, "/dev/sd\0b"s})
        EXPECT_STREQ(whyNotUsed(path), "it holds a blank or a control character") << path;
}

} // namespace

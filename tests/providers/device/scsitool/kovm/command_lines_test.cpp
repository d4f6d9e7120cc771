#include "kovm/command_lines.h"

#include <gtest/gtest.h>

namespace {

TEST(CommandLines, ArgumentsAreSeparatedByTheirOwnRunsOfBlanks)
{
    EXPECT_EQ(kovm::nodeQuery("sdc"), "/usr/sbin/kodmpadm   getdmpnode  nodename=sdc");
    EXPECT_EQ(kovm::pathQuery("arr0_17"), "/usr/sbin/kodmpadm   getsubpaths  dmpnodename=arr0_17");
    EXPECT_EQ(kovm::removal("arr0_17"), "/usr/sbin/kodisk   rm arr0_17");
    EXPECT_EQ(kovm::rescan({"sdc", "sdd"}), "/usr/sbin/kodisk   scandisks  device=sdc,sdd");
    EXPECT_EQ(kovm::rescan({"sdc"}), "/usr/sbin/kodisk   scandisks  device=sdc");
}

TEST(CommandLines, NoNamesScanEveryDisk)
{
    EXPECT_EQ(kovm::rescan({}), "/usr/sbin/kodisk   scandisks ");
    EXPECT_EQ(kovm::rescan({""}), "/usr/sbin/kodisk   scandisks ");
    EXPECT_EQ(kovm::rescan({"", "sdc"}), "/usr/sbin/kodisk   scandisks  device=,sdc");
}

TEST(CommandLines, NamesGoInUnalteredUpToTheirFirstNul)
{
    EXPECT_EQ(kovm::removal("a;b $(c)\n%s"), "/usr/sbin/kodisk   rm a;b $(c)\n%s");
    EXPECT_EQ(kovm::nodeQuery(std::string("sd\0c", 4)),
              "/usr/sbin/kodmpadm   getdmpnode  nodename=sd");
}

} // namespace

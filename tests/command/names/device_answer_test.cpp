#include "names/device_answer.h"

#include <gmock/gmock.h>

#include "tests/command/answer_json.h"

namespace {

/// The answer for a path, on one line.
std::string rowOf(const std::string& path)
{
    CDmpClaimManager manager;
    return answerJson(command::deviceAnswer(manager, path), command::nameColumns()).dump();
}

std::string partitionOf(const std::string& disk, unsigned int number)
{
    CDmpClaimManager manager;
    return answerJson(command::partitionAnswer(manager, disk, number), command::partitionColumns())
        .dump();
}

std::string ownerOf(const std::string& prefix)
{
    return answerJson(command::prefixAnswer(command::makeModules({}), prefix),
                      command::prefixColumns())
        .dump();
}

TEST(DeviceAnswer, TellsOfPartitionsByDriver)
{
    EXPECT_EQ(rowOf("/dev/sdb12"),
              R"({"name":"/dev/sdb12","owner":"native","claim":2,"partition":true,)"
              R"("disk":"/dev/sdb","partnum":12})");
    EXPECT_EQ(rowOf("/dev/emcpowerc1"),
              R"({"name":"/dev/emcpowerc1","owner":"powerpath","claim":16,"partition":true,)"
              R"("disk":"/dev/emcpowerc","partnum":1})");
    EXPECT_EQ(rowOf("/dev/mapper/mpathbp2"),
              R"({"name":"/dev/mapper/mpathbp2","owner":"device-mapper","claim":16,)"
              R"("partition":true,"disk":"/dev/mapper/mpathb","partnum":null})");
}

TEST(DeviceAnswer, AWholeDiskHasNoNumber)
{
    EXPECT_EQ(rowOf("/dev/sdb"),
              R"({"name":"/dev/sdb","owner":"native","claim":2,"partition":false,)"
              R"("disk":"/dev/sdb","partnum":null})");
    EXPECT_EQ(rowOf("/dev/emcpowerc"),
              R"({"name":"/dev/emcpowerc","owner":"powerpath","claim":16,"partition":false,)"
              R"("disk":"/dev/emcpowerc","partnum":null})");
    EXPECT_EQ(rowOf("/dev/mapper/mpathbp12"),
              R"({"name":"/dev/mapper/mpathbp12","owner":"device-mapper","claim":16,)"
              R"("partition":false,"disk":"/dev/mapper/mpathbp12","partnum":null})");
}

TEST(DeviceAnswer, WithoutAnOwnerThereIsNoDisk)
{
    for (const std::string path : {"/dev/vda1", "", "/dev/sd", "/dev/mapper/vg-lvp1", "emcpowerd2"})
        EXPECT_EQ(rowOf(path), R"({"name":")" + path +
                                   R"(","owner":null,"claim":0,"partition":false,)"
                                   R"("disk":null,"partnum":null})");
}

TEST(DeviceAnswer, EveryNumberIsReadBackAsItIs)
{
    // The last two are the sentinels of deviceAnswer.
    for (const char* number : {"0", "1", "4294967295", "1592614637", "3735936687"}) {
        CDmpClaimManager manager;
        const auto answer = command::deviceAnswer(manager, std::string("/dev/sda") + number);
        EXPECT_EQ(std::to_string(answer.partnum.value()), number);
    }
}

TEST(PartitionAnswer, NamesThePartition)
{
    EXPECT_EQ(partitionOf("/dev/mapper/mpathb", 12),
              R"({"name":"/dev/mapper/mpathbp12","disk":"/dev/mapper/mpathb","partnum":12,)"
              R"("owner":"device-mapper","claim":16})");
}

TEST(PartitionAnswer, WithoutAnOwnerThereIsNoPath)
{
    EXPECT_EQ(partitionOf("/dev/vda", 1),
              R"({"name":null,"disk":"/dev/vda","partnum":1,"owner":null,"claim":0})");
}

TEST(PrefixAnswer, NamesTheDriverThatClaimsThePrefix)
{
    EXPECT_EQ(ownerOf("/dev/emcpower"), R"({"prefix":"/dev/emcpower","owner":"powerpath"})");
    EXPECT_EQ(ownerOf("/dev/other"), R"({"prefix":"/dev/other","owner":null})");
}

} // namespace

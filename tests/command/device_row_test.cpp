#include "command/device_row.h"

#include <gmock/gmock.h>

#include "command/drivers.h"

using command::Row;

namespace {

/// The row of a path, on one line.
std::string rowOf(const std::string& path)
{
    CDmpClaimManager manager;
    return command::deviceRow(manager, path).dump();
}

TEST(DeviceRow, TellsOfPartitionsByDriver)
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

TEST(DeviceRow, AWholeDiskHasNoNumber)
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

TEST(DeviceRow, WithoutAnOwnerThereIsNoDisk)
{
    for (const std::string path : {"/dev/vda1", "", "/dev/sd", "/dev/mapper/vg-lvp1", "emcpowerd2"})
        EXPECT_EQ(rowOf(path), R"({"name":")" + path +
                                   R"(","owner":null,"claim":0,"partition":false,)"
                                   R"("disk":null,"partnum":null})");
}

TEST(DeviceRow, EveryNumberIsReadBackAsItIs)
{
    // The last two are the values that tell whether a number was written.
    for (const char* number : {"0", "1", "4294967295", "1592614637", "3735936687"}) {
        CDmpClaimManager manager;
        const Row row = command::deviceRow(manager, std::string("/dev/sda") + number);
        EXPECT_EQ(row["partnum"].dump(), number);
    }
}

TEST(PartitionRow, NamesThePartition)
{
    CDmpClaimManager manager;
    EXPECT_EQ(command::partitionRow(manager, "/dev/mapper/mpathb", 12).dump(),
              R"({"path":"/dev/mapper/mpathbp12","disk":"/dev/mapper/mpathb","partnum":12,)"
              R"("owner":"device-mapper","claim":16})");
}

TEST(PartitionRow, WithoutAnOwnerThereIsNoPath)
{
    CDmpClaimManager manager;
    EXPECT_EQ(command::partitionRow(manager, "/dev/vda", 1).dump(),
              R"({"path":null,"disk":"/dev/vda","partnum":1,"owner":null,"claim":0})");
}

TEST(PrefixRow, NamesTheDriverThatClaimsThePrefix)
{
    const auto modules = command::makeModules({});
    EXPECT_EQ(command::prefixRow(modules, "/dev/emcpower").dump(),
              R"({"prefix":"/dev/emcpower","owner":"powerpath"})");
    EXPECT_EQ(command::prefixRow(modules, "/dev/other").dump(),
              R"({"prefix":"/dev/other","owner":null})");
}

TEST(Drivers, ModulesComeInTheManagersOrder)
{
    std::vector<std::string> names;
    for (const auto& module : command::makeModules({}))
        names.emplace_back(command::driverName(module.get()));
    EXPECT_THAT(names, testing::ElementsAre("native", "powerpath", "device-mapper"));
    EXPECT_EQ(command::driverName(nullptr), nullptr);
}

} // namespace

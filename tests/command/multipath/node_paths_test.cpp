#include "multipath/node_paths.h"

#include <gmock/gmock.h>

#include "tests/command/multipath/shown_paths.h"
#include "tests/support/made_up_machine.h"

using namespace command;

namespace {

/// The node arr0_17 with the paths sdb and sdc.
class NodePaths : public testing::Test {
protected:
    NodePaths()
    {
        m_machine.addDisk("sdb", "8:16", "2:0:0:0");
        m_machine.addDisk("sdc", "8:32", "3:0:0:0");
    }

    DiskPaths pathsIn(const kovm::Lines& rows) const
    {
        DiskAnswer answer;
        answer.node = "arr0_17";
        answer.pathTable = {"NAME  STATE       TYPE       CTLR", "==============="};
        answer.pathTable.insert(answer.pathTable.end(), rows.begin(), rows.end());
        const Inventory inventory(m_machine.roots());
        return nodePaths(inventory, answer);
    }

    MadeUpMachine m_machine;
};

TEST_F(NodePaths, AreThoseOfTheTable)
{
    const DiskPaths disk = pathsIn({"sdb  DISABLED    PRIMARY    c1", "",
                                    "sdc  ENABLED(A)  SECONDARY  c2", "sdx  ENABLED    SECONDARY"});
    EXPECT_EQ(shown(disk), "/dev/sdb PRIMARY failed no\n"
                           "/dev/sdc SECONDARY active yes\n"
                           "/dev/sdx SECONDARY standby no\n");
    EXPECT_EQ(disk.driver, PathDriver::kodmp);
    EXPECT_EQ(disk.name, "arr0_17");
    EXPECT_EQ(disk.device, nullptr);
    EXPECT_EQ(disk.paths[2].device, nullptr);
}

TEST_F(NodePaths, MayBeUsedByTurns)
{
    EXPECT_EQ(shown(pathsIn({"sdb ENABLED(A) PRIMARY", "sdc ENABLED(A) PRIMARY"})),
              "/dev/sdb PRIMARY active yes\n/dev/sdc PRIMARY active yes\n");
}

TEST_F(NodePaths, WithoutAnActiveOneAreUsedAsLookupsChoose)
{
    EXPECT_EQ(shown(pathsIn({"sdb ENABLED SECONDARY", "sdc ENABLED PRIMARY"})),
              "/dev/sdb SECONDARY active yes\n/dev/sdc PRIMARY standby no\n");
}

TEST_F(NodePaths, ThatAreAllDisabledAreNotUsed)
{
    const DiskPaths disk = pathsIn({"sdb DISABLED PRIMARY", "sdc"});
    EXPECT_EQ(shown(disk), "/dev/sdb PRIMARY failed no\n/dev/sdc - failed no\n");
    EXPECT_EQ(disk.hasUsedPath(), false);
}

TEST_F(NodePaths, ThatTheKernelHasTakenOffAreNotUsed)
{
    m_machine.set("sdb", "device/state", "offline");
    EXPECT_EQ(shown(pathsIn({"sdb ENABLED(A) PRIMARY", "sdc ENABLED SECONDARY"})),
              "/dev/sdb PRIMARY offline no\n/dev/sdc SECONDARY active yes\n");
}

} // namespace

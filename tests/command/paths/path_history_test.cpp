#include "paths/path_history.h"

#include <gmock/gmock.h>

#include "tests/support/made_up_machine.h"

using namespace command;
using namespace std::chrono_literals;

namespace {

/// Readings of the paths sda and sdb, two seconds apart.
class History : public testing::Test {
protected:
    History()
    {
        m_machine.addDisk("sda", "8:0", "2:0:0:0");
        m_machine.addDisk("sdb", "8:16", "3:0:0:0");
    }

    static DiskPath path(const std::string& name, PathState state, bool isUsed)
    {
        DiskPath made;
        made.name = name;
        made.group = "1";
        made.state = state;
        made.isUsed = isUsed;
        return made;
    }

    /// A line for each row:  path state change was
    static std::string shownRows(const std::vector<PathAnswer>& rows)
    {
        constexpr const char* kinds[] = {"added", "removed", "changed"};
        std::string text;
        for (const PathAnswer& row : rows) {
            text += row.path.name + ' ' + pathStateName(row.path.state);
            if (row.change != nullptr)
                text += std::string(" ") + kinds[static_cast<int>(row.change->kind)] + ' ' +
                        row.change->was;
            text += '\n';
        }
        return text;
    }

    PathHistory::Rows take(const std::vector<DiskPath>& paths)
    {
        m_disks = {{PathDriver::deviceMapper, "mpatha", nullptr, paths, {}}};
        m_now.time += 2s;
        m_now.clock += 2s;
        return m_history.take(m_disks, m_now);
    }

    MadeUpMachine m_machine;
    PathHistory m_history;
    std::vector<DiskPaths> m_disks;
    Moment m_now;
};

TEST_F(History, BeginsWithoutChanges)
{
    const PathHistory::Rows rows = take({path("sda", PathState::active, true)});
    EXPECT_EQ(shownRows(rows.all), "sda active\n");
    EXPECT_EQ(shownRows(rows.changed), "");
}

TEST_F(History, RemembersHowAPathLastChanged)
{
    take({path("sda", PathState::active, true), path("sdb", PathState::standby, false)});
    const std::vector<DiskPath> after{path("sda", PathState::failed, false),
                                      path("sdb", PathState::active, true)};
    const PathHistory::Rows rows = take(after);
    const char* expected = "sda failed changed 1 active used\n"
                           "sdb active changed 1 standby unused\n";
    EXPECT_EQ(shownRows(rows.all), expected);
    EXPECT_EQ(shownRows(rows.changed), expected);
    EXPECT_EQ(rows.changed[0].change->time, m_now.time);
    const PathHistory::Rows later = take(after);
    EXPECT_EQ(shownRows(later.all), expected);
    EXPECT_EQ(shownRows(later.changed), "");
}

TEST_F(History, DoesNotTellOfAUseThatWasNotKnown)
{
    DiskPath unknown = path("sda", PathState::unknown, false);
    unknown.isUsed.reset();
    take({unknown});
    EXPECT_EQ(shownRows(take({path("sda", PathState::active, true)}).changed),
              "sda active changed 1 unknown\n");
}

TEST_F(History, ShowsPathsThatCameAndWent)
{
    const DiskPath first = path("sda", PathState::active, true);
    const DiskPath second = path("sdb", PathState::standby, false);
    take({first});
    EXPECT_EQ(shownRows(take({first, second}).changed), "sdb standby added \n");
    const PathHistory::Rows rows = take({first});
    EXPECT_EQ(shownRows(rows.changed), "sdb unknown removed 1 standby unused\n");
    EXPECT_EQ(shownRows(rows.all), "sda active\nsdb unknown removed 1 standby unused\n");
    EXPECT_EQ(shownRows(take({first}).changed), "");
    EXPECT_EQ(shownRows(take({first, second}).changed), "sdb standby added \n");
}

TEST_F(History, TellsWhatAPathDoesInASecond)
{
    const Inventory inventory(m_machine.roots());
    DiskPath sda = path("sda", PathState::active, true);
    sda.device = inventory.named("sda");
    m_machine.set("sda", "stat", "100 0 800 0 10 0 80 0 0 0 0");
    EXPECT_FALSE(take({sda}).all[0].rates);
    m_machine.set("sda", "stat", "301 0 2400 0 30 0 240 0 0 0 0");
    const IoRates rates = take({sda}).all[0].rates.value();
    EXPECT_EQ(rates.reads, 101);
    EXPECT_EQ(rates.readBytes, 800 * 512);
    EXPECT_EQ(rates.writes, 10);
    EXPECT_EQ(rates.writtenBytes, 80 * 512);
}

TEST_F(History, TellsNothingOfASecondWithoutCountersOrTime)
{
    const Inventory inventory(m_machine.roots());
    DiskPath sda = path("sda", PathState::active, true);
    sda.device = inventory.named("sda");
    m_machine.set("sda", "stat", "100 0 800 0 10 0 80 0 0 0 0");
    take({sda});
    m_now.clock -= 2s;
    EXPECT_FALSE(take({sda}).all[0].rates); // at the same time
    remove(m_machine.sysfs("class/block/sda/stat"));
    EXPECT_FALSE(take({sda}).all[0].rates);
}

TEST_F(History, TakesCountersThatBeginAnewForNoRequests)
{
    const Inventory inventory(m_machine.roots());
    DiskPath sda = path("sda", PathState::active, true);
    sda.device = inventory.named("sda");
    m_machine.set("sda", "stat", "100 0 800 0 10 0 80 0 0 0 0");
    take({sda});
    m_machine.set("sda", "stat", "1 0 8 0 1 0 8 0 0 0 0");
    EXPECT_EQ(take({sda}).all[0].rates.value().reads, 0);
}

} // namespace

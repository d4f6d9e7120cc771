// The JSON about a machine that has devices of most kinds, held against the schemas.
#include <gmock/gmock.h>

#include "tests/command/made_up_process.h"

namespace {

/// A map with partitions and a path that has failed, an NVMe disk, a node of the volume manager,
/// and a local disk.
class MadeUpDevices : public MadeUpProcess {
protected:
    MadeUpDevices()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addDisk("sdd", "8:48", "3:0:0:0");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda", "sdd"});
        m_made.addMap("dm-1", "254:1", "mpathap1", "part1-mpath-3600", {"dm-0"});
        m_made.addDisk("sdb", "8:16", "2:0:0:1"); // sdb and sdc are the volume manager's
        m_made.addDisk("sdc", "8:32", "3:0:0:1");
        m_made.addPartition("sdc", "sdc1", "8:33");
        m_made.add("virtual/nvme-subsystem/nvme-subsys0", "nvme0n1", "259:0");
        for (const char* disk : {"sda", "sdb", "dm-0", "nvme0n1"})
            m_made.set(disk, "stat", "7 0 56 0 3 0 24 0 1 9 0");
        m_made.set("sda", "size", "2048");
        m_made.set("sda", "device/wwid", "naa.600");
        m_made.set("sda", "device/access_state", "active/optimized");
        m_made.set("sda", "device/preferred_path", "1");
        m_made.set("sdd", "device/state", "offline");
    }

    /// What the schema has against the JSON; empty when it has nothing.
    static std::string objection(const std::string& schema, const std::string& part,
                                 const std::string& json)
    {
        return Process({PYTHON, SCHEMAS_PY, SCHEMAS, schema, part}).finish(json).errors;
    }
};

TEST_F(MadeUpDevices, AreWhatTheSchemasSay)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"list", "-O"},
             {"show", "-O", "--resolve", "dm-1", "/dev/sdd", "8:33", "nvme0n1"},
             {"explain", "/dev/sda", "/dev/mapper/mpatha", "/dev/mapper/mpathap1", "nvme0n1"},
             {"append", "-O", "--existing", "/dev/mapper/mpatha", "1"},
             {"strip", "-O", "--existing", "/dev/mapper/mpathap1"},
             {"paths", "-O", "-a"}}) {
        std::vector<std::string> json = arguments;
        json.emplace_back("-J");
        const Result result = Process(onMachine(json)).finish();
        EXPECT_GT(result.output.size(), 100U) << result.errors;
        EXPECT_EQ(objection(arguments.front(), "document", result.output), "");
    }
}

TEST_F(MadeUpDevices, ThatChangeAreLinesOfTheirSchema)
{
    Process process(onMachine({"paths", "--watch=0.1"}));
    awaitQuestion(); // in the first reading, behind that of sda
    m_made.set("sda", "device/state", "offline");
    const std::string line = process.receiveLine();
    const Json change = Json::parse(line);
    EXPECT_EQ(change["path"], "/dev/sda");
    EXPECT_EQ(change["change"], "changed");
    EXPECT_EQ(change["was"], "unknown");
    EXPECT_EQ(change["state"], "offline");
    EXPECT_EQ(change["rps"], 0);
    EXPECT_EQ(objection("paths", "line", line), "");
}

TEST_F(MadeUpDevices, AreNothingElse)
{
    EXPECT_THAT(objection("paths", "line", R"({"path": "/dev/sda", "change": "moved"})"),
                testing::HasSubstr("paths: $.change: 'moved' is not one of"));
    EXPECT_THAT(objection("paths", "line", R"({"hops": 1})"), testing::HasSubstr("'hops'"));
}

} // namespace

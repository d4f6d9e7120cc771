#include <sstream>

#include "tests/command/active/active_command.h"

namespace {

using testing::ElementsAre;

/// The demonstration, with pauses that end at once and a short time until the interrupt.
class Demo : public ActiveCommand {
protected:
    Result demonstrate() const
    {
        writeScript(folder() / "timeout",
                    "options=\"$1 $2 $3\"; shift 4; exec /usr/bin/timeout $options 0.5 \"$@\"");
        writeScript(folder() / "dmpclaim",
                    "export LD_PRELOAD=" QUICK_SLEEP " SLEEP_LOG=" + statePath() +
                        ".sleeps ASAN_OPTIONS=verify_asan_link_order=0\n"
                        "exec " DMPCLAIM_COMMAND " \"$@\"");
        return Process({"env", "PATH=" + folder().string() + ":/usr/bin:/bin:/usr/sbin:/sbin",
                        SIMULATOR_DEMO, folder() / "dmpclaim", SIMULATOR_TOOLS})
            .finish();
    }
};

using Row = std::vector<std::string>;

/// The rows of all tables, without the time.
std::vector<Row> rows(const std::string& text)
{
    std::vector<Row> found;
    for (const std::string& line : splitLines(text)) {
        std::istringstream words(line);
        Row row(4);
        for (std::string& cell : row)
            words >> cell;
        if (line.rfind("/dev/", 0) == 0)
            found.push_back(row);
    }
    return found;
}

TEST_F(Demo, EachSceneEndsAsItsTitleSays)
{
    const Result ended = demonstrate();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    EXPECT_THAT(rows(ended.output), ElementsAre(Row{"/dev/sdc", "native", "/dev/sdb", "yes"},
                                                Row{"/dev/sdb", "native", "/dev/sdc", "yes"},
                                                Row{"/dev/sdc", "native", "/dev/sdb", "yes"},
                                                Row{"/dev/sdc", "native", "/dev/sdc", "no"},
                                                Row{"/dev/sdc", "native", "/dev/sdb", "yes"}));
    EXPECT_THAT(ended.output, testing::HasSubstr("-- status 130 after "));
    EXPECT_THAT(ended.output, testing::EndsWith("\nNo tool is left running.\n"));
    EXPECT_THAT(ended.output, testing::Not(testing::HasSubstr("\x1b")));
}

} // namespace

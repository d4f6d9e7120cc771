#include "tests/command/active_command.h"

namespace {

using testing::ElementsAre;

/// The demonstration, with pauses that end at once and a short patience with the tool that hangs.
class Demo : public ActiveCommand {
protected:
    Result demonstrate() const
    {
        program("timeout",
                "options=\"$1 $2 $3\"; shift 4; exec /usr/bin/timeout $options 0.5 \"$@\"");
        program("dmpclaim", "export LD_PRELOAD=" QUICK_SLEEP " SLEEP_LOG=" + statePath() +
                                ".sleeps ASAN_OPTIONS=verify_asan_link_order=0\n"
                                "exec " DMPCLAIM_COMMAND " \"$@\"");
        return Process({"env", "PATH=" + folder().string() + ":/usr/bin:/bin:/usr/sbin:/sbin",
                        SIMULATOR_DEMO, folder() / "dmpclaim", SIMULATOR_TOOLS})
            .finish();
    }

private:
    void program(const std::string& name, const std::string& script) const
    {
        std::ofstream(folder() / name) << "#!/bin/sh\n" << script << '\n';
        permissions(folder() / name, std::filesystem::perms::owner_all);
    }
};

/// The rows of all tables, with single spaces and without the time.
std::vector<std::string> rows(const std::string& text)
{
    std::vector<std::string> found;
    for (const std::string& line : splitLines(text)) {
        std::istringstream words(line);
        std::string name;
        std::string owner;
        std::string active;
        std::string changed;
        if (line.rfind("/dev/", 0) == 0 && words >> name >> owner >> active >> changed)
            found.push_back(name + " " + owner + " " + active + " " + changed);
    }
    return found;
}

TEST_F(Demo, EachSceneEndsAsItsTitleSays)
{
    const Result ended = demonstrate();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    EXPECT_THAT(rows(ended.output),
                ElementsAre("/dev/sdc native /dev/sdb yes", "/dev/sdb native /dev/sdc yes",
                            "/dev/sdc native /dev/sdb yes", "/dev/sdc native /dev/sdc no",
                            "/dev/sdc native /dev/sdb yes"));
    EXPECT_THAT(ended.output, testing::HasSubstr("-- status 130 after "));
    EXPECT_THAT(ended.output, testing::EndsWith("\nNo tool is left running.\n"));
    EXPECT_THAT(ended.output, testing::Not(testing::HasSubstr("\x1b")));
}

} // namespace

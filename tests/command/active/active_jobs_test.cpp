#include "active_command.h"

#include <chrono>

namespace {

using testing::ElementsAre;

class ActiveJobs : public ActiveCommand {
protected:
    Json paths(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "-J");
        return Json::parse(run(arguments).output)["paths"];
    }
};

TEST_F(ActiveJobs, ResultsStandInTheOrderOfTheArguments)
{
    useFault({{"subcommand", "getdmpnode"}, {"call", 1}, {"delay_ms", 300}});
    std::vector<std::string> names;
    for (const Json& path : paths({"-j3", "/dev/sdc", "/dev/mapper/a", "/dev/sdb", "x"}))
        names.push_back(path["name"].get<std::string>() + " " + path["active"].dump());
    EXPECT_THAT(names, ElementsAre("/dev/sdc \"/dev/sdb\"", "/dev/mapper/a \"/dev/mapper/a\"",
                                   "/dev/sdb \"/dev/sdb\"", "x null"));
}

TEST_F(ActiveJobs, JobsPauseAtTheSameTime)
{
    useFault({{"subcommand", "getdmpnode"}, {"exit", 3}});
    std::vector<std::string> arguments{"-j8"};
    for (char letter = 'a'; letter < 'i'; ++letter)
        arguments.push_back(std::string("/dev/sd") + letter);
    arguments.insert(arguments.begin(), "-J");
    const auto begin = std::chrono::steady_clock::now();
    const Json answers = Json::parse(Process(active(arguments, "500")).finish().output)["paths"];
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    double took = 0;
    for (const Json& path : answers)
        took += path["took"].get<double>();
    // If they ran one after the other, `took` would be no more than the time that passed.
    EXPECT_GT(took, 3 * passed.count());
    EXPECT_EQ(sleeps().size(), 32U);
}

TEST_F(ActiveJobs, TraceLinesOfAllJobsGoToTheFile)
{
    const std::string trace = folder() / "trace";
    const Json answers = paths({"-j4", "--trace=3", "--trace-file", trace, "/dev/sda", "/dev/sdb",
                                "/dev/sdc", "/dev/sdd"});
    EXPECT_EQ(outline(answers[1]["timeline"]).size(), 2U);
    std::vector<std::string> disks;
    for (const std::string& line : linesOf(trace)) {
        EXPECT_THAT(line, testing::MatchesRegex("[-0-9T:.+]+ \\[[0-9]+\\] [123] .*"));
        const std::size_t name = line.find("3 ExecuteCommand command: ");
        if (name != std::string::npos && line.find("nodename=sd") != std::string::npos)
            disks.push_back(line.substr(line.rfind('=') + 1));
    }
    for (const char* disk : {"sda", "sdb", "sdc", "sdd"})
        EXPECT_THAT(disks, testing::Contains(disk));
}

TEST_F(ActiveJobs, PathsOnStandardInputAreSharedOut)
{
    std::vector<std::string> shell{"bash", "-c", "printf '/dev/sdb\\n/dev/sdc\\n' | \"$@\"",
                                   "bash"};
    const std::vector<std::string> command = active({"-j2", "-n", "-o", "active", "-"});
    shell.insert(shell.end(), command.begin(), command.end());
    EXPECT_THAT(Process(shell).finish(), Succeeds("/dev/sdb\n/dev/sdb\n"));
}

TEST_F(ActiveJobs, TheNumberHasBounds)
{
    for (const char* jobs : {"0", "65", "-1", "x", "1.5", ""}) {
        const Result ended = run({"-j", jobs, "/dev/sdc"});
        EXPECT_EQ(ended.status, 2) << jobs;
        EXPECT_EQ(ended.output, "");
    }
    EXPECT_THAT(run({"-j", "65", "/dev/sdc"}).errors,
                testing::HasSubstr("'65' is not a number of jobs (1 to 64)"));
    EXPECT_TRUE(log().empty());
    EXPECT_EQ(run({"-j", "64", "/dev/sdc"}).status, 0);
}

} // namespace

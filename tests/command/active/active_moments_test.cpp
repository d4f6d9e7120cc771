// `dmpclaim active` with eight jobs, and signals at random moments.
#include <chrono>
#include <csignal>
#include <random>

#include "active_command.h"
#include "running_tools.h"

namespace {

using testing::AnyOf;
using testing::Eq;
using testing::IsEmpty;

class ActiveMoments : public ActiveCommand {
protected:
    static constexpr int runs = 20;

    /// Eight jobs that ask tools which take a while.
    std::vector<std::string> eightJobs() const
    {
        useFault({{"subcommand", "getdmpnode"}, {"delay_ms", 30}});
        std::vector<std::string> arguments{"-j8", "-J"};
        for (char letter = 'a'; letter < 'm'; ++letter)
            arguments.push_back(std::string("/dev/sd") + letter);
        return active(arguments);
    }

    /// Waits up to that many milliseconds, or until the command ends.
    void pauseWithin(const Process& process, int most)
    {
        process.endsWithin(std::uniform_int_distribution<int>(0, most)(m_random));
    }

    void expectNoToolAfter(std::chrono::seconds patience) const
    {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!runningTools(statePath()).empty() && std::chrono::steady_clock::now() < end)
            continue;
        EXPECT_THAT(runningTools(statePath()), IsEmpty());
    }

private:
    std::minstd_rand m_random; // the same moments in each run of the test, as far as time allows
};

TEST_F(ActiveMoments, AnInterruptLeavesNoToolAndOneDocument)
{
    const std::vector<std::string> command = eightJobs();
    for (int run = 0; run < runs; ++run) {
        Process process(command);
        pauseWithin(process, 150);
        process.signal(SIGINT);
        EXPECT_TRUE(process.endsWithin(5000));
        const Result ended = process.finish();
        // The shell that prepares the namespace, or the command before it waits for signals, may
        // get the interrupt.
        EXPECT_THAT(ended.status, AnyOf(Eq(0), Eq(64), Eq(130), Eq(-SIGINT)));
        EXPECT_TRUE(ended.output.empty() || Json::accept(ended.output)) << ended.output;
        EXPECT_THAT(runningTools(statePath()), IsEmpty());
    }
}

TEST_F(ActiveMoments, AKillLeavesToolsThatEndByThemselvesAndAWholeState)
{
    const std::vector<std::string> command = eightJobs();
    for (int run = 0; run < runs; ++run) {
        Process process(command);
        pauseWithin(process, 150);
        process.signal(SIGKILL);
        process.finish();
        expectNoToolAfter(std::chrono::seconds(10));
        EXPECT_TRUE(state().contains("arrays"));
    }
}

TEST_F(ActiveMoments, AStopAndAContinueChangeNoAnswer)
{
    const std::vector<std::string> command = eightJobs();
    const Json wanted = Json::parse(Process(command).finish().output)["paths"];
    for (int run = 0; run < runs; ++run) {
        Process process(command);
        for (int stop = 0; stop < 3; ++stop) {
            pauseWithin(process, 40);
            process.signal(SIGSTOP);
            pauseWithin(process, 20);
            process.signal(SIGCONT);
        }
        const Json answers = Json::parse(process.finish().output)["paths"];
        ASSERT_EQ(answers.size(), wanted.size());
        for (std::size_t path = 0; path < wanted.size(); ++path)
            EXPECT_EQ(answers[path]["active"], wanted[path]["active"]);
    }
}

TEST_F(ActiveMoments, AlarmsChangeNoAnswer)
{
    std::vector<std::string> command =
        active({"-j8", "-n", "-o", "active", "/dev/sdb", "/dev/sdc"});
    for (std::string& word : command) {
        if (word.rfind("LD_PRELOAD=", 0) == 0)
            word += ":" ALARMS;
    }
    for (int run = 0; run < runs; ++run)
        EXPECT_THAT(Process(command).finish(), Succeeds("/dev/sdb\n/dev/sdb\n"));
}

} // namespace

// `dmpclaim paths` as a process, on a made-up machine with the simulated volume manager.
#include <gmock/gmock.h>

#include <csignal>

#include "tests/command/made_up_process.h"
#include "tests/support/disk_letters.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

namespace {

class PathsProcess : public MadeUpProcess {
protected:
    PathsProcess()
    {
        m_made.addDisk("sdb", "8:16", "2:0:0:1");
        m_made.addDisk("sdc", "8:32", "3:0:0:1");
    }

    /// Disks that the volume manager is not asked about.
    void addVirtioDisks(int count)
    {
        for (int number = 0; number < count; ++number)
            m_made.add("pci0000:00/virtio" + std::to_string(number) + "/block",
                       "vd" + diskLetters(number), "253:" + std::to_string(number));
    }

    Result paths(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "paths");
        return Process(onMachine(arguments)).finish();
    }

    /// The document that a signal cuts short, whose beginning was received before.
    static Json cutShort(Process& process, const std::string& begin)
    {
        process.signal(SIGTERM);
        const Result result = process.finish();
        EXPECT_EQ(result.status, 143) << result.errors;
        return Json::parse(begin + result.output);
    }
};

TEST_F(PathsProcess, ShowsTheVolumeManagersPaths)
{
    const std::vector<std::string> columns{"-rn", "-o", "DEVICE,DRIVER,PATH,GROUP,STATE,USED"};
    const Result healthy = paths(columns);
    EXPECT_EQ(healthy.output, "arr0_17 kodmp /dev/sdb PRIMARY active yes\n"
                              "arr0_17 kodmp /dev/sdc SECONDARY standby no\n");
    EXPECT_EQ(healthy.errors, "");
    EXPECT_EQ(healthy.status, 0);
    useScenario("failed-over");
    const Result failedOver = paths(columns);
    EXPECT_EQ(failedOver.output, "arr0_17 kodmp /dev/sdb PRIMARY failed no\n"
                                 "arr0_17 kodmp /dev/sdc SECONDARY active yes\n");
    EXPECT_EQ(failedOver.status, 64);
    useScenario("no-path-left");
    EXPECT_EQ(paths(columns).status, 32);
}

/// Reads the terminal until it gets the text.
void awaitText(const Terminal& terminal, const std::string& text)
{
    std::string screen;
    for (int tries = 0; tries < 30'000 && screen.find(text) == std::string::npos; ++tries) {
        screen += terminal.written();
        usleep(1000);
    }
    EXPECT_THAT(screen, testing::HasSubstr(text));
}

TEST_F(PathsProcess, ShowsAFailoverOnATerminalUntilASignalComes)
{
    const Terminal terminal;
    Setting setting;
    setting.output = terminal.descriptor();
    setting.environment = {"NO_COLOR=1"};
    Process process(onMachine({"paths", "--watch=0.1", "-o", "PATH,STATE,USED"}), setting);
    awaitText(terminal, "/dev/sdb active  yes\n/dev/sdc standby no\n");
    useScenario("failed-over");
    awaitText(terminal, "/dev/sdb failed no\n/dev/sdc active yes\n");
    process.signal(SIGTERM);
    const Result result = process.finish();
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_EQ(result.status, 143);
}

TEST_F(PathsProcess, FindsTheVolumeManagersNodeByItsName)
{
    EXPECT_EQ(paths({"-rn", "-o", "PATH", "arr0_17"}).output, "/dev/sdb\n/dev/sdc\n");
    EXPECT_EQ(paths({"arr0_18"}).status, 32);
}

TEST_F(PathsProcess, AnInterruptClosesADocumentThatIsWritten)
{
    addVirtioDisks(600); // more than a pipe holds
    Process process(onMachine({"paths", "-a", "-J"}));
    const std::string begin = process.receiveLine();
    const Json document = cutShort(process, begin);
    EXPECT_TRUE(document["interrupted"]);
    EXPECT_GT(document["paths"].size(), 2U);
    EXPECT_LT(document["paths"].size(), 602U);
}

TEST_F(PathsProcess, AnInterruptClosesADocumentWhoseRowsAreNotKnownYet)
{
    useScenario("hanging-tool");
    Process process(onMachine({"paths", "-J"}));
    awaitQuestion(); // which the tool does not answer
    const Json document = cutShort(process, "");
    EXPECT_TRUE(document["interrupted"]);
    EXPECT_TRUE(document["paths"].empty());
}

} // namespace

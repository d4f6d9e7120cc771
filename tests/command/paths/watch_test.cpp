// Readings of made-up paths, on a real terminal and on a pipe.
#include "paths/watch.h"

#include <thread>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "cli/usage_error.h"
#include "commands.h"
#include "tests/command/output/captured_output.h"
#include "tests/support/terminal.h"

using namespace command;
using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr char columns[] = "PATH,STATE,CHANGE,WAS";

Options optionsOf(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "paths");
    return std::get<Options>(parseOptions(arguments, subcommands()));
}

DiskPath path(const std::string& name, PathState state)
{
    DiskPath made;
    made.name = name;
    made.state = state;
    made.isUsed = state == PathState::active;
    return made;
}

/// Readings two seconds apart.
class Watch : public testing::Test {
protected:
    void show(WatchOutput& output, const std::vector<DiskPath>& paths,
              const std::vector<std::string>& notes = {})
    {
        DiskList list;
        list.disks = {{PathDriver::deviceMapper, "/dev/mapper/mpatha", nullptr, paths, {}}};
        list.notes = notes;
        m_now.time += 2s;
        m_now.clock += 2s;
        output.show(list, m_now);
    }

    Moment m_now;
};

class OnATerminal : public Watch {
protected:
    explicit OnATerminal(const winsize& size = {24, 80, 0, 0}) : m_terminal(size) {}

    /// The screen after the time of day.
    std::string screen()
    {
        const std::string text = m_terminal.written();
        EXPECT_THAT(text, StartsWith("\x1b[H\x1b[2J\x1b[?7l"));
        EXPECT_THAT(text, EndsWith("\x1b[?7h"));
        const std::size_t begin = std::min(text.find("  "), text.size());
        return text.substr(begin, text.rfind('\x1b') - begin);
    }

    Terminal m_terminal;
    OutputStream m_stream{m_terminal.descriptor()};
    const Options m_options = optionsOf({"--watch", "-o", columns});
    WatchOutput m_output{m_options, m_stream};
};

TEST_F(OnATerminal, EachReadingReplacesTheOneBeforeAndMarksWhatChanged)
{
    show(m_output, {path("/dev/sda", PathState::active), path("/dev/sdb", PathState::standby)});
    EXPECT_EQ(screen(), "  2 paths\n"
                        "PATH     STATE   CHANGE WAS\n"
                        "/dev/sda active  -      -\n"
                        "/dev/sdb standby -      -\n");
    show(m_output, {path("/dev/sda", PathState::failed), path("/dev/sdb", PathState::active)});
    EXPECT_EQ(screen(), "  2 paths\n"
                        "PATH     STATE  CHANGE  WAS\n"
                        "/dev/sda failed changed active used\n"
                        "/dev/sdb active changed standby unused\n");
}

TEST_F(OnATerminal, ChangesAreColoured)
{
    m_stream.setColored(true);
    show(m_output, {path("/dev/sda", PathState::active)});
    screen();
    show(m_output, {path("/dev/sda", PathState::failed)});
    EXPECT_THAT(screen(), testing::ContainsRegex("\x1b\\[[0-9;]+mchanged\x1b\\["));
}

TEST_F(Watch, AnInterruptLeavesATerminalThatWrapsLines)
{
    const Options options = optionsOf({"--watch", "-o", columns});
    for (int round = 0; round < 30; ++round) {
        Terminal terminal;
        OutputStream stream(terminal.descriptor());
        WatchOutput output(options, stream);
        std::thread watching([&] {
            for (int reading = 0; reading < 20; ++reading) // less than a terminal holds
                show(output, {path("/dev/sda", PathState::active)});
        });
        std::this_thread::sleep_for(round * 20us);
        stream.end(1s);
        watching.join();
        const std::string screen = terminal.written();
        EXPECT_GE(screen.rfind("\x1b[?7h") + 1, screen.rfind("\x1b[?7l") + 1) << round;
    }
}

TEST_F(OnATerminal, NotesStandBelowThePaths)
{
    show(m_output, {path("/dev/sda", PathState::unknown)}, {"only root knows"});
    EXPECT_THAT(screen(), EndsWith("/dev/sda unknown -      -\nonly root knows\n"));
}

class OnASmallTerminal : public OnATerminal {
protected:
    OnASmallTerminal() : OnATerminal({6, 80, 0, 0}) {}
};

TEST_F(OnASmallTerminal, PathsThatChangedLastAreSeen)
{
    std::vector<DiskPath> paths;
    for (const char* name : {"/dev/sda", "/dev/sdb", "/dev/sdc", "/dev/sdd"})
        paths.push_back(path(name, PathState::active));
    show(m_output, paths);
    EXPECT_EQ(screen(), "  4 paths\n"
                        "PATH     STATE  CHANGE WAS\n"
                        "/dev/sda active -      -\n"
                        "/dev/sdb active -      -\n"
                        "2 more paths; to see fewer, name their disks\n");
    paths[3].state = PathState::failed;
    show(m_output, paths);
    EXPECT_THAT(screen(), StartsWith("  4 paths\n"
                                     "PATH     STATE  CHANGE  WAS\n"
                                     "/dev/sdd failed changed active used\n"
                                     "/dev/sda active -       -\n"));
}

class OnATerminalOfFiveLines : public OnATerminal {
protected:
    OnATerminalOfFiveLines() : OnATerminal({5, 80, 0, 0}) {}
};

TEST_F(OnATerminalOfFiveLines, OnePathIsSeenHoweverManyNotesThereAre)
{
    const std::vector<DiskPath> paths{path("/dev/sda", PathState::active),
                                      path("/dev/sdb", PathState::active)};
    show(m_output, paths, {"a", "b", "c"});
    EXPECT_EQ(screen(), "  2 paths\n"
                        "PATH     STATE  CHANGE WAS\n"
                        "/dev/sda active -      -\n"
                        "1 more paths; to see fewer, name their disks\n"
                        "a\nb\nc\n");
}

TEST_F(Watch, ATerminalShowsLinesOfJsonWhenTheyAreWanted)
{
    const Terminal terminal;
    OutputStream stream(terminal.descriptor());
    const Options options = optionsOf({"--watch", "--json-lines"});
    WatchOutput output(options, stream);
    show(output, {path("/dev/sda", PathState::active)});
    EXPECT_EQ(terminal.written(), "");
    show(output, {path("/dev/sda", PathState::failed)});
    EXPECT_THAT(terminal.written(), StartsWith("{\"device\":\"/dev/mapper/mpatha\""));
}

class OnAPipe : public Watch {
protected:
    CapturedOutput m_captured;
    const Options m_options = optionsOf({"--watch"});
    WatchOutput m_output{m_options, m_captured.stream()};
};

TEST_F(OnAPipe, EachChangedPathIsALineOfJson)
{
    show(m_output, {path("/dev/sda", PathState::active), path("/dev/sdb", PathState::standby)});
    show(m_output, {path("/dev/sda", PathState::active), path("/dev/sdb", PathState::standby)});
    EXPECT_EQ(m_captured.written(), "");
    show(m_output, {path("/dev/sda", PathState::failed), path("/dev/sdb", PathState::standby)});
    const std::string line = m_captured.written(); // at once
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    const nlohmann::ordered_json change = nlohmann::ordered_json::parse(line);
    EXPECT_EQ(change["device"], "/dev/mapper/mpatha");
    EXPECT_EQ(change["path"], "/dev/sda");
    EXPECT_EQ(change["state"], "failed");
    EXPECT_EQ(change["change"], "changed");
    EXPECT_EQ(change["was"], "active used");
    EXPECT_THAT(change["time"], testing::MatchesRegex("....-..-..T..:..:..Z"));
}

TEST_F(OnAPipe, PathsThatComeAndGoAreChanges)
{
    show(m_output, {path("/dev/sda", PathState::active)});
    show(m_output, {path("/dev/sdb", PathState::active)});
    std::istringstream lines(m_captured.written());
    std::vector<std::string> changes;
    for (std::string line; std::getline(lines, line);) {
        const nlohmann::ordered_json change = nlohmann::ordered_json::parse(line);
        changes.push_back(change["path"].get<std::string>() + ' ' +
                          change["change"].get<std::string>());
    }
    EXPECT_THAT(changes, testing::ElementsAre("/dev/sdb added", "/dev/sda removed"));
}

TEST_F(OnAPipe, ANoteIsWrittenToStandardErrorOnce)
{
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i)
        show(m_output, {path("/dev/sda", PathState::unknown)}, {"only root knows"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "dmpclaim: only root knows\n");
}

TEST(WatchInterval, IsTwoSecondsOrWhatIsGiven)
{
    EXPECT_EQ(watchInterval(optionsOf({})), std::nullopt);
    const std::pair<std::vector<std::string>, std::chrono::milliseconds> intervals[] = {
        {{"-w"}, 2s},
        {{"--watch"}, 2s},
        {{"-w", "5"}, 5s},
        {{"--watch=0.5"}, 500ms},
        {{"-w=0.5"}, 500ms},
        {{"-w=1", "5"}, 1s},
        {{"--watch", "0.1", "sda"}, 100ms},
        {{"-w", "sda"}, 2s},
        {{"sda", "-w"}, 2s},
        {{"-a", "-w", "86400"}, 86400s}};
    for (const auto& [arguments, interval] : intervals)
        EXPECT_EQ(watchInterval(optionsOf(arguments)), interval) << arguments.back();
    EXPECT_EQ(optionsOf({"-w", "5", "sda"}).paths, std::vector<std::string>{"sda"});
    EXPECT_EQ(optionsOf({"--", "-w", "5"}).paths, (std::vector<std::string>{"-w", "5"}));
}

TEST(WatchInterval, IsANumberOfSeconds)
{
    for (const char* value : {"0", "0.09", "86401", "nan", "inf", "1s", "-1", "1.2.3", "x"}) {
        EXPECT_THAT([&] { watchInterval(optionsOf({std::string("--watch=") + value})); },
                    testing::ThrowsMessage<UsageError>(
                        std::string("--watch takes a number of seconds from 0.1 to 86400, not '") +
                        value + "'"));
    }
}

TEST(WatchInterval, DoesNotGoWithFormsThatEnd)
{
    for (const char* form : {"--raw", "--pairs", "--json"}) {
        EXPECT_THAT(
            [&] {
                watchInterval(optionsOf({"-w", form}));
            },
            testing::ThrowsMessage<UsageError>(HasSubstr(std::string("leave out ") + form)));
    }
    EXPECT_NO_THROW(watchInterval(optionsOf({"-w", "--json-lines"})));
}

} // namespace

// Each system call of a subcommand fails once with each error.
#include <gmock/gmock.h>

#include <cerrno>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <nlohmann/json.hpp>
#include <sys/syscall.h>

#include "doctor/replace_file.h"
#include "list.h"
#include "partitions.h"
#include "show.h"
#include "tests/command/made_up_command.h"
#include "tests/support/namespaces.h"
#include "tests/support/system_call_faults.h"

namespace {

using command::Options;

/// What reads sysfs and writes answers.
CallErrors callsOfAnAnswer()
{
    return errorsOf({SYS_close, SYS_fcntl, SYS_getdents64, SYS_newfstatat, SYS_openat, SYS_poll,
                     SYS_read, SYS_readlink, SYS_write});
}

class SubcommandSystemCalls : public MadeUpCommand {
protected:
    SubcommandSystemCalls()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addPartition("sda", "sda1", "8:1");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
    }

    void SetUp() override
    {
        if (!mayFailCalls())
            endWithoutNamespaces();
    }

    /// Runs the subcommand with each fault. Its answer is a whole document with as many rows as
    /// ever, or it says that there is none.
    void failIn(const Subcommand& run, std::vector<std::string> arguments, unsigned int leastFaults)
    {
        arguments.insert(arguments.begin() + 1, "-J");
        const auto options = std::get<Options>(parseOptions(arguments, command::subcommands()));
        const std::size_t rows = rowsOf(answer(run, arguments).output);
        const command::Machine machine(m_made.roots());
        std::optional<CapturedOutput> output; // of one run
        int status = -1;
        std::string reason;
        const unsigned int faults = failEachCall(
            {callsOfAnAnswer(),
             [&] {
                 output.emplace();
                 try {
                     status = run(options, output->stream(), machine);
                 } catch (const std::exception& failure) {
                     reason = failure.what();
                 }
             },
             [&](const CallFault& fault) -> std::string {
                 if (!reason.empty() || status == 1)
                     return "";
                 if (fault.call == SYS_write && fault.error != EINTR && fault.error != EAGAIN)
                     return "does not say that the answer is lost";
                 return rowsOf(output->written()) == rows ? "" : "loses rows";
             }});
        std::cout << faults << " faults\n";
        EXPECT_GE(faults, leastFaults);
    }

private:
    /// The rows of the only list of a document.
    static std::size_t rowsOf(const std::string& text)
    {
        const nlohmann::ordered_json document = nlohmann::ordered_json::parse(text);
        for (const auto& member : document) {
            if (member.is_array())
                return member.size();
        }
        return 0;
    }
};

TEST_F(SubcommandSystemCalls, OfListFailOneByOne)
{
    failIn(command::listDevices, {"list"}, 500);
}

TEST_F(SubcommandSystemCalls, OfShowFailOneByOne)
{
    failIn(command::showPaths, {"show", "--resolve", "dm-0"}, 130);
}

TEST_F(SubcommandSystemCalls, OfExplainFailOneByOne)
{
    failIn(command::explainPaths, {"explain", "/dev/sda"}, 330);
}

TEST_F(SubcommandSystemCalls, OfAppendFailOneByOne)
{
    failIn(command::appendNumber, {"append", "/dev/sda", "1"}, 45);
}

TEST_F(SubcommandSystemCalls, OfStripFailOneByOne)
{
    failIn(command::stripNumbers, {"strip", "--existing", "/dev/mapper/mpatha"}, 210);
}

TEST_F(SubcommandSystemCalls, LeaveAReplacedFileWhole)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("metrics");
    const std::string text(100000, 'x');
    std::ofstream(path) << "old";
    bool hasFailed = false;
    const unsigned int faults = failEachCall(
        {errorsOf({SYS_close, SYS_fchmod, SYS_fsync, SYS_openat, SYS_rename, SYS_write}),
         [&] {
             try {
                 command::replaceFile(path, text);
             } catch (const std::system_error&) {
                 hasFailed = true;
             }
         },
         [&](const CallFault&) -> std::string {
             if (textOf(path) != (hasFailed ? "old" : text))
                 return "the file is not whole";
             std::ofstream(path) << "old";
             const std::filesystem::directory_iterator files(folder.file(""));
             return std::distance(begin(files), end(files)) == 1 ? "" : "leaves a file";
         }});
    std::cout << faults << " faults\n";
    EXPECT_GE(faults, 55U);
}

} // namespace

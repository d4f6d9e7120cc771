// What stands in the trace file's place: links, FIFOs and files of other accounts, and what a
// caller passes.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdarg>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/child.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal.h"

using koze_pdk_4_4::CZeTraceFileSink;
using testing::EndsWith;

namespace {

/// Called once, behind the next open for writing.
std::function<void()> afterOpen;

/// What the coarse clock shows, if not the time.
std::optional<timespec> coarseTime;

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    if (clock == CLOCK_REALTIME_COARSE && coarseTime) {
        *time = *coarseTime;
        return 0;
    }
    return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
}

extern "C" int openat(int folder, const char* name, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const auto opened =
        static_cast<int>(syscall(SYS_openat, folder, name, flags, va_arg(arguments, mode_t)));
    va_end(arguments);
    if ((flags & O_ACCMODE) == O_WRONLY && afterOpen)
        std::exchange(afterOpen, nullptr)();
    return opened;
}

namespace {

constexpr uid_t stranger = 4711;

/// Why the path cannot be written, after the path itself; empty when a line was written.
std::string refusal(const std::string& path)
{
    try {
        CZeTraceFileSink sink(6, path);
        sink.write(2, "line");
        EXPECT_EQ(sink.dropped(), 0U);
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(), path + ": " + error.code().message());
        return error.code().message();
    }
    return "";
}

/// Makes this process one of the stranger's, which ends with its parent.
void becomeStranger()
{
    if (setresgid(stranger, stranger, stranger) != 0 ||
        setresuid(stranger, stranger, stranger) != 0)
        _exit(1);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_DUMPABLE, 1); // its /proc/self/fd is root's without
}

constexpr char foreignLink[] = "symbolic link of another account in a folder that others may write";
constexpr char foreignFifo[] = "FIFO of another account in a folder that others may write";
constexpr char foreignFile[] = "file of another account in a folder that others may write";
constexpr char severalNames[] = "file with several names in a folder that others may write";
constexpr char unreadFifo[] = "FIFO that nobody reads";

class AppendFile : public testing::Test {
protected:
    void SetUp() override
    {
        alarm(60); // ends a test that waits
        umask(022);
        std::filesystem::create_directory(shared);
        chmod(shared.c_str(), 01777);
        std::ofstream(victim) << "untouched\n";
    }
    void TearDown() override { alarm(0); }

    /// The victim's text has not changed.
    bool isUntouched() const { return textOf(victim) == "untouched\n"; }

    TemporaryFolder folder;
    std::string shared = folder.file("common");
    std::string trace = shared + "/trace.log";
    std::string victim = folder.file("victim");
};

/// With a folder that others may write, in each way in which they may.
class InASharedFolder : public AppendFile {
protected:
    void SetUp() override
    {
        AppendFile::SetUp();
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can make files of another account";
    }

    void inEachSharedFolder(const std::function<void()>& check) const
    {
        const std::pair<mode_t, uid_t> ways[] = {{01777, 0}, {0777, 0},        {0775, 0},
                                                 {0757, 0},  {0755, stranger}, {01777, stranger}};
        for (const auto& [mode, owner] : ways) {
            SCOPED_TRACE(testing::Message() << std::oct << mode << " of " << owner);
            ASSERT_EQ(chown(shared.c_str(), owner, 0), 0);
            ASSERT_EQ(chmod(shared.c_str(), mode), 0);
            check();
            std::filesystem::remove(trace);
        }
    }

    static void giveAway(const std::string& path)
    {
        ASSERT_EQ(lchown(path.c_str(), stranger, stranger), 0);
    }
};

TEST_F(InASharedFolder, LinksOfOthersAreRefused)
{
    inEachSharedFolder([this] {
        std::filesystem::create_symlink(victim, trace);
        giveAway(trace);
        EXPECT_EQ(refusal(trace), foreignLink);
        EXPECT_TRUE(isUntouched());
    });
}

TEST_F(InASharedFolder, LinksOfOthersToWhatIsMissingCreateNothing)
{
    inEachSharedFolder([this] {
        std::filesystem::create_symlink(folder.file("new"), trace);
        giveAway(trace);
        EXPECT_EQ(refusal(trace), foreignLink);
        EXPECT_FALSE(std::filesystem::exists(folder.file("new")));
    });
}

TEST_F(InASharedFolder, LinksOfOthersAreRefusedOnTheWay)
{
    inEachSharedFolder([this] {
        std::filesystem::create_directory_symlink(folder.file(""), trace);
        giveAway(trace);
        EXPECT_EQ(refusal(trace + "/victim"), foreignLink);
        EXPECT_TRUE(isUntouched());
    });
}

TEST_F(InASharedFolder, LinksOfOthersAreRefusedBehindLinksOfOnesOwn)
{
    const std::string mine = folder.file("mine");
    std::filesystem::create_symlink("common/trace.log", mine);
    inEachSharedFolder([this, &mine] {
        std::filesystem::create_symlink(victim, trace);
        giveAway(trace);
        EXPECT_EQ(refusal(mine), foreignLink);
        EXPECT_TRUE(isUntouched());
    });
}

TEST_F(InASharedFolder, FifosOfOthersAreRefusedWithAReaderAndWithout)
{
    inEachSharedFolder([this] {
        ASSERT_EQ(mkfifo(trace.c_str(), 0666), 0);
        giveAway(trace);
        EXPECT_EQ(refusal(trace), foreignFifo);
        const Descriptor reader = openFile(trace.c_str(), O_RDONLY | O_NONBLOCK);
        EXPECT_EQ(refusal(trace), foreignFifo);
    });
}

TEST_F(InASharedFolder, FilesOfOthersAreRefused)
{
    inEachSharedFolder([this] {
        std::ofstream(trace) << "theirs\n";
        giveAway(trace);
        EXPECT_EQ(refusal(trace), foreignFile);
        EXPECT_EQ(textOf(trace), "theirs\n");
    });
}

TEST_F(InASharedFolder, WhatOthersPutThereDuringTheOpenIsRefused)
{
    inEachSharedFolder([this] {
        std::ofstream(trace) << "mine\n";
        afterOpen = [this] { giveAway(trace); };
        EXPECT_EQ(refusal(trace), foreignFile);
        EXPECT_EQ(textOf(trace), "mine\n");
    });
}

TEST_F(InASharedFolder, WhatIsRefusedIsAQuestionOfPermission)
{
    std::ofstream(trace) << "theirs\n";
    giveAway(trace);
    try {
        const CZeTraceFileSink sink(6, trace);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
    }
}

TEST_F(InASharedFolder, FilesAndLinksOfRootAreTrusted)
{
    inEachSharedFolder([this] {
        std::filesystem::create_symlink(folder.file("traced"), trace);
        std::ofstream(folder.file("traced")) << "";
        chmod(folder.file("").c_str(), 0755);
        chmod(folder.file("traced").c_str(), 0666);
        EXPECT_TRUE(
            holdsInChild([&] { return setresuid(1, 1, 1) == 0 && refusal(trace).empty(); }));
    });
}

TEST_F(InASharedFolder, RootIsTrustedInARootFolderOfAnotherAccount)
{
    giveAway(folder.file(""));
    chmod(folder.file("").c_str(), 0755);
    std::ofstream(trace) << "";
    chmod(trace.c_str(), 0666);
    EXPECT_TRUE(holdsInChild([this] {
        return chroot(folder.file("").c_str()) == 0 && setresuid(1, 1, 1) == 0 &&
               refusal("/common/trace.log").empty();
    }));
}

TEST_F(InASharedFolder, AccountsThatAreNotRootUseTheirOwnFiles)
{
    chmod(folder.file("").c_str(), 0755);
    EXPECT_TRUE(holdsInChild([this] {
        return setresuid(1, 1, 1) == 0 && refusal(trace).empty() && refusal(trace).empty();
    }));
    EXPECT_EQ(refusal(trace), foreignFile);
}

TEST_F(InASharedFolder, DescriptorsOfAnotherAccountsProcessAreRefused)
{
    Pipe ready = makePipe();
    const pid_t other = fork();
    if (other == 0) {
        const Descriptor opened = openFile(victim.c_str(), O_RDONLY);
        dup2(opened.number(), STDIN_FILENO);
        becomeStranger();
        ready.writer.close();
        pause();
    }
    ready.writer.close();
    char byte = 0;
    EXPECT_EQ(read(ready.reader.number(), &byte, 1), 0);
    EXPECT_EQ(refusal("/proc/" + std::to_string(other) + "/fd/0"), foreignLink);
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    EXPECT_TRUE(isUntouched());
}

TEST_F(InASharedFolder, OnesOwnFilesFifosAndLinksWork)
{
    inEachSharedFolder([this] {
        EXPECT_EQ(refusal(trace), "");
        EXPECT_EQ(refusal(trace), "");
        EXPECT_EQ(linesOf(trace).size(), 2U);
        std::filesystem::remove(trace);
        std::filesystem::create_symlink("../other", trace);
        EXPECT_EQ(refusal(trace), "");
        EXPECT_EQ(linesOf(folder.file("other")).size(), 1U);
        std::filesystem::remove(folder.file("other"));
        std::filesystem::remove(trace);
        ASSERT_EQ(mkfifo(trace.c_str(), 0600), 0);
        const Descriptor reader = openFile(trace.c_str(), O_RDONLY | O_NONBLOCK);
        EXPECT_EQ(refusal(trace), "");
    });
}

TEST_F(InASharedFolder, NobodyElseMayWriteAFolderOfOnesOwn)
{
    chmod(shared.c_str(), 0755);
    std::filesystem::create_symlink(victim, trace);
    giveAway(trace);
    giveAway(victim);
    EXPECT_EQ(refusal(trace), "");
    EXPECT_EQ(linesOf(victim).size(), 2U);
}

/// Puts links to the victim, FIFOs and files into `path` until the process is killed.
[[noreturn]] void plant(const std::string& path, const std::string& victim)
{
    becomeStranger();
    for (;;) {
        (void)symlink(victim.c_str(), path.c_str());
        unlink(path.c_str());
        mkfifo(path.c_str(), 0666);
        unlink(path.c_str());
        close(creat(path.c_str(), 0666));
        unlink(path.c_str());
    }
}

TEST_F(InASharedFolder, NoRaceIsWonByAnotherAccount)
{
    chmod(shared.c_str(), 0777);
    chmod(folder.file("").c_str(), 0755);
    const pid_t attacker = fork();
    if (attacker == 0)
        plant(trace, victim);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(400);
    std::map<std::string, int> outcomes;
    while (std::chrono::steady_clock::now() < end)
        ++outcomes[refusal(trace)];
    kill(attacker, SIGKILL);
    int status = 0;
    waitpid(attacker, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_TRUE(isUntouched());
    EXPECT_GT(outcomes[foreignLink] + outcomes[foreignFifo] + outcomes[foreignFile], 0);
}

TEST_F(AppendFile, FilesWithSeveralNamesAreRefusedInASharedFolder)
{
    std::filesystem::create_hard_link(victim, trace);
    EXPECT_EQ(refusal(trace), severalNames);
    EXPECT_TRUE(isUntouched());
    chmod(shared.c_str(), 0755);
    EXPECT_EQ(refusal(trace), "");
}

TEST_F(AppendFile, ANameThatIsTakenAwayDuringTheOpenCounts)
{
    std::ofstream(trace) << "untouched\n";
    std::filesystem::last_write_time(trace, {});
    afterOpen = [this] {
        std::filesystem::rename(trace, folder.file("elsewhere"));
        std::filesystem::rename(folder.file("elsewhere"), trace);
    };
    EXPECT_EQ(refusal(trace), severalNames);
    EXPECT_EQ(textOf(trace), "untouched\n");
}

TEST_F(AppendFile, ANameThatIsTakenAwayInTheSameTickCounts)
{
    std::ofstream(trace) << "untouched\n";
    std::filesystem::last_write_time(trace, {});
    struct stat status {};
    ASSERT_EQ(stat(trace.c_str(), &status), 0);
    coarseTime = status.st_ctim;
    EXPECT_EQ(refusal(trace), severalNames);
    ++coarseTime->tv_sec;
    EXPECT_EQ(refusal(trace), "");
    coarseTime.reset();
}

TEST_F(AppendFile, AWriteDuringTheOpenDoesNotCount)
{
    afterOpen = [this] { std::ofstream(trace, std::ios::app) << "other\n"; };
    EXPECT_EQ(refusal(trace), "");
    EXPECT_EQ(linesOf(trace).size(), 2U);
}

TEST_F(AppendFile, AFifoThatNobodyReadsIsNotWaitedFor)
{
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(refusal(fifo), unreadFifo);
    try {
        const CZeTraceFileSink sink(6, fifo);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_device_or_address);
    }
}

TEST_F(AppendFile, ASocketIsNoFifo)
{
    const Descriptor unconnected(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(refusal("/proc/self/fd/" + std::to_string(unconnected.number())),
              "No such device or address");
}

TEST_F(AppendFile, AFullFifoIsWaitedFor)
{
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const Descriptor reader = openFile(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    auto sink = std::make_unique<CZeTraceFileSink>(6, fifo);
    std::thread emptying([&] {
        fcntl(reader.number(), F_SETFL, 0);
        std::string block(65536, ' ');
        while (read(reader.number(), block.data(), block.size()) > 0)
            continue;
    });
    sink->write(2, std::string(1 << 20, 'x')); // more than it holds
    EXPECT_EQ(sink->dropped(), 0U);
    sink.reset();
    emptying.join();
}

TEST_F(AppendFile, WhatTheCallerPassesWorks)
{
    for (const char* folderOfDescriptors : {"/dev/fd/", "/proc/self/fd/"}) {
        const Pipe pipe = makePipe();
        fcntl(pipe.reader.number(), F_SETFL, O_NONBLOCK);
        const Terminal terminal;
        const Descriptor unnamed = fileHolding("before\n");
        for (const int descriptor : {pipe.writer.number(), terminal.descriptor(), unnamed.number()})
            EXPECT_EQ(refusal(folderOfDescriptors + std::to_string(descriptor)), "");
        std::string line(100, '\0');
        EXPECT_GT(read(pipe.reader.number(), line.data(), line.size()), 0);
        EXPECT_THAT(terminal.written(), EndsWith("] 2 line\n"));
        EXPECT_GT(lseek(unnamed.number(), 0, SEEK_END), 7);
        EXPECT_EQ(fcntl(pipe.writer.number(), F_GETFL) & O_NONBLOCK, 0);
    }
}

TEST_F(AppendFile, StandardStreamsWork)
{
    for (const auto& [path, descriptor] :
         {std::pair("/dev/stdout", STDOUT_FILENO), std::pair("/dev/stderr", STDERR_FILENO)}) {
        Pipe pipe = makePipe();
        EXPECT_TRUE(holdsInChild([&, stream = path, number = descriptor] {
            return dup2(pipe.writer.number(), number) == number && refusal(stream).empty();
        }));
        pipe.writer.close();
        std::string line(100, '\0');
        EXPECT_GT(read(pipe.reader.number(), line.data(), line.size()), 0) << path;
    }
}

/// Whether this process becomes root of a namespace that knows no other account.
bool becomesRootOfItsOwn()
{
    if (geteuid() == 0)
        becomeStranger();
    const std::string map = "0 " + std::to_string(geteuid()) + " 1";
    return unshare(CLONE_NEWUSER) == 0 &&
           write(openFile("/proc/self/uid_map", O_WRONLY).number(), map.data(), map.size()) > 0 &&
           geteuid() == 0;
}

TEST_F(AppendFile, StandardStreamsWorkWhereRootIsNobody)
{
    if (!holdsInChild(becomesRootOfItsOwn))
        GTEST_SKIP() << "user namespaces are not permitted";
    EXPECT_TRUE(holdsInChild([] {
        if (!becomesRootOfItsOwn())
            return false;
        const Pipe pipe = makePipe();
        return dup2(pipe.writer.number(), STDERR_FILENO) == STDERR_FILENO &&
               refusal("/dev/stderr").empty();
    }));
}

TEST_F(AppendFile, PathsLeadWhereTheKernelLeads)
{
    std::filesystem::create_directory_symlink("common/", folder.file("way"));
    std::filesystem::create_symlink("way/../common/./deep", folder.file("relative"));
    std::filesystem::create_symlink(folder.file("relative"), folder.file("absolute"));
    EXPECT_EQ(refusal(folder.file("absolute")), "");
    EXPECT_EQ(linesOf(shared + "/deep").size(), 1U);
    EXPECT_EQ(refusal(folder.file("//common///deep")), "");
    EXPECT_EQ(linesOf(shared + "/deep").size(), 2U);
    EXPECT_TRUE(holdsInChild([this] {
        return chdir(shared.c_str()) == 0 && refusal("deep").empty() &&
               refusal("../way/deep").empty();
    }));
    EXPECT_EQ(linesOf(shared + "/deep").size(), 4U);
}

TEST_F(AppendFile, PathsThatLeadNowhereFailAsTheKernelSays)
{
    std::filesystem::create_symlink("loop", folder.file("loop"));
    EXPECT_EQ(refusal(folder.file("loop")), "Too many levels of symbolic links");
    EXPECT_EQ(refusal(victim + "/x"), "Not a directory");
    EXPECT_EQ(refusal(victim + "/"), "Not a directory");
    EXPECT_EQ(refusal(folder.file("missing/x")), "No such file or directory");
    EXPECT_EQ(refusal(shared), "Is a directory");
    std::filesystem::create_directory(trace);
    EXPECT_EQ(refusal(trace), "Is a directory");
    EXPECT_EQ(refusal("/"), "Is a directory");
    EXPECT_EQ(refusal("."), "Is a directory");
}

TEST_F(AppendFile, AsManyLinksAreFollowedAsByTheKernel)
{
    std::string target = "end";
    for (int i = 0; i < 41; ++i) {
        const std::string name = "link" + std::to_string(i);
        std::filesystem::create_symlink(target, folder.file(name));
        target = name;
    }
    EXPECT_EQ(refusal(folder.file("link39")), "");
    EXPECT_EQ(refusal(folder.file("link40")), "Too many levels of symbolic links");
}

TEST_F(AppendFile, NewFilesAreNotForOthers)
{
    for (const auto& [mask, mode] : {std::pair(0000U, 0640U), std::pair(0022U, 0640U),
                                     std::pair(0027U, 0640U), std::pair(0077U, 0600U)}) {
        umask(mask);
        EXPECT_EQ(refusal(trace), "");
        struct stat status {};
        ASSERT_EQ(stat(trace.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
        std::filesystem::remove(trace);
    }
    umask(022);
}

TEST_F(AppendFile, FilesThatAreThereKeepTheirMode)
{
    chmod(victim.c_str(), 0604);
    EXPECT_EQ(refusal(victim), "");
    EXPECT_EQ(std::filesystem::status(victim).permissions(), std::filesystem::perms(0604));
}

} // namespace

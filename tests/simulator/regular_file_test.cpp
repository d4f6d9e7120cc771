// Files that another account may put in the place of the simulator's, in a folder that both can
// write to; files that cannot be locked, read or written.
#include "simulator/regular_file.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <thread>

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "simulated_tools.h"
#include "simulator/error.h"

namespace {

int refusedLocks = 0;
std::atomic<int> examinations{0};

} // namespace

/// Of the files that the test itself opens.
extern "C" int fstat(int descriptor, struct stat* status) noexcept
{
    ++examinations;
    return static_cast<int>(syscall(SYS_fstat, descriptor, status));
}

/// Of the files that the test itself opens; the tools have the kernel's.
extern "C" int flock(int, int) noexcept
{
    ++refusedLocks;
    errno = ENOLCK;
    return -1;
}

namespace {

class RegularFile : public SimulatedTools {
protected:
    RegularFile() { useScenario("healthy"); }

    std::string beside(const std::string& suffix) const { return statePath() + suffix; }

    static testing::Matcher<Result> IsRefused(const std::string& path)
    {
        return Fails(78, path + ": it is no regular file; remove it\n");
    }

    /// Replaces the file by a FIFO.
    static void makeFifo(const std::string& path)
    {
        std::filesystem::remove(path);
        ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    }

    /// A call with this umask.
    Result scanWithUmask(const std::string& umask) const
    {
        return start({"/bin/sh", "-c", "umask \"$1\" && exec \"$2\" scandisks", "sh", umask,
                      SIMULATOR_TOOLS "/kodisk"})
            .finish();
    }

    static unsigned modeOf(const std::string& path)
    {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }
};

TEST_F(RegularFile, NoLinkIsFollowedToAFile)
{
    const std::string victim = folder() / "victim";
    std::ofstream(victim) << "as it was\n";
    for (const char* suffix : {".log", ".lock"}) {
        create_symlink(victim, std::filesystem::path(beside(suffix)));
        EXPECT_THAT(kodisk({"scandisks"}), IsRefused("cannot write " + beside(suffix)));
        std::filesystem::remove(beside(suffix));
    }
    EXPECT_EQ(textOf(victim), "as it was\n");
}

TEST_F(RegularFile, NoFileIsMadeThroughALink)
{
    const std::filesystem::path victim = folder() / "victim";
    for (const char* suffix : {".log", ".lock"}) {
        create_symlink(victim, std::filesystem::path(beside(suffix)));
        EXPECT_THAT(kodisk({"scandisks"}), IsRefused("cannot write " + beside(suffix)));
        std::filesystem::remove(beside(suffix));
    }
    EXPECT_FALSE(exists(victim));
}

TEST_F(RegularFile, ALinkToARecordingIsRefused)
{
    std::ofstream(folder() / "elsewhere.json") << Json{{"commands", Json::array()}};
    create_symlink(folder() / "elsewhere.json", folder() / "case.json");
    write(Json{{"replay", "case.json"}});
    EXPECT_THAT(kodisk({"scandisks"}),
                IsRefused("cannot read " + (folder() / "case.json").string()));
}

TEST_F(RegularFile, AFifoIsRefusedAtOnce)
{
    for (const char* suffix : {".log", ".lock"}) {
        makeFifo(beside(suffix));
        EXPECT_THAT(kodisk({"scandisks"}), IsRefused("cannot write " + beside(suffix)));
        const Descriptor reader = openFile(beside(suffix).c_str(), O_RDONLY | O_NONBLOCK);
        EXPECT_THAT(kodisk({"scandisks"}), IsRefused("cannot write " + beside(suffix)));
        std::filesystem::remove(beside(suffix));
    }
    write(Json{{"replay", "case.json"}});
    makeFifo(folder() / "case.json");
    EXPECT_THAT(kodisk({"scandisks"}),
                IsRefused("cannot read " + (folder() / "case.json").string()));
    makeFifo(statePath());
    EXPECT_THAT(kodisk({"scandisks"}), IsRefused("cannot read " + statePath()));
}

TEST_F(RegularFile, ALinkThatIsNotOpenedIsNotExaminedEither)
{
    create_symlink(statePath(), std::filesystem::path(beside(".lock")));
    examinations = 0;
    EXPECT_NO_THROW(simulator::RegularFile(statePath(), O_RDONLY | O_NOFOLLOW));
    EXPECT_THROW(simulator::RegularFile(beside(".lock"), O_RDONLY | O_NOFOLLOW), simulator::Error);
    EXPECT_EQ(examinations, 1);
}

TEST_F(RegularFile, AFileThatCannotBeLockedIsNamed)
{
    const simulator::RegularFile file(beside(".lock"), O_WRONLY | O_CREAT, 0640);
    refusedLocks = 0;
    try {
        file.lock();
        ADD_FAILURE();
    } catch (const simulator::Error& error) {
        EXPECT_EQ(error.what(), "cannot lock " + beside(".lock") + ": No locks available");
    }
    EXPECT_EQ(refusedLocks, 1);
}

TEST_F(RegularFile, AFileThatCannotBeReadIsNamed)
{
    std::filesystem::remove(statePath());
    create_symlink(std::filesystem::path("/proc/self/mem"), std::filesystem::path(statePath()));
    EXPECT_THAT(kodisk({"scandisks"}),
                Fails(78, "cannot read " + statePath() + ": Input/output error"));
}

TEST_F(RegularFile, AFileThatCannotBeWrittenIsNamed)
{
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_THAT(start({"/usr/bin/env", "--ignore-signal=XFSZ", "/usr/bin/prlimit", "--fsize=0",
                       SIMULATOR_TOOLS "/kodisk", "scandisks"})
                    .finish(),
                Fails(78, "cannot write " + logPath() + ": File too large"));
    EXPECT_EQ(log().size(), 1U);
    EXPECT_EQ(state()["calls"], Json({{"scandisks", 1}}));
}

TEST_F(RegularFile, TheNewStateReplacesWhateverHasItsName)
{
    const std::filesystem::path next = beside(".new");
    const std::filesystem::path victim = folder() / "victim";
    std::ofstream(victim) << "as it was\n";
    create_symlink(victim, next);
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    makeFifo(next);
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    std::filesystem::remove(next);
    std::ofstream(next) << "of a call that was killed";
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_EQ(textOf(victim), "as it was\n");
    EXPECT_EQ(state()["calls"], Json({{"scandisks", 3}}));
    EXPECT_TRUE(is_regular_file(symlink_status(std::filesystem::path(statePath()))));
    EXPECT_FALSE(exists(symlink_status(next)));
}

TEST_F(RegularFile, ALinkThatIsPutBackAllTheTimeIsNotFollowed)
{
    const std::string next = beside(".new");
    const std::string victim = folder() / "victim";
    std::ofstream(victim) << "as it was\n";
    std::atomic<bool> done = false;
    std::atomic<int> links = 0;
    std::thread planter([&] {
        while (!done)
            links += symlink(victim.c_str(), next.c_str()) == 0 ? 1 : 0;
    });
    for (int call = 0; call < 50; ++call)
        EXPECT_THAT(kodisk({"scandisks"}),
                    testing::AnyOf(Succeeds(), Fails(78, "cannot write " + next)));
    done = true;
    planter.join();
    EXPECT_GT(links, 1);
    EXPECT_EQ(textOf(victim), "as it was\n");
}

TEST_F(RegularFile, OthersMayNeitherReadNorWriteLogAndLock)
{
    EXPECT_THAT(scanWithUmask("0"), Succeeds());
    EXPECT_EQ(modeOf(beside(".log")), 0640U);
    EXPECT_EQ(modeOf(beside(".lock")), 0640U);
}

TEST_F(RegularFile, ANewStateHasNoMorePermissionsThanTheOldOne)
{
    const std::pair<mode_t, unsigned> modes[] = {{0600, 0600}, {0664, 0664}, {04644, 0644}};
    for (const auto& [before, after] : modes) {
        ASSERT_EQ(chmod(statePath().c_str(), before), 0);
        EXPECT_THAT(scanWithUmask("0"), Succeeds());
        EXPECT_EQ(modeOf(statePath()), after);
    }
    EXPECT_THAT(scanWithUmask("077"), Succeeds());
    EXPECT_EQ(modeOf(statePath()), 0600U);
}

} // namespace

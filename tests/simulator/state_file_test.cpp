#include "simulated_tools.h"

#include <atomic>
#include <thread>

#include <sys/file.h>

namespace {

class StateFile : public SimulatedTools {
protected:
    /// Starts `callers` threads that each make `calls` calls, one after the other.
    template <class Call>
    static void inParallel(int callers, int calls, Call call)
    {
        std::vector<std::thread> threads;
        for (int caller = 0; caller < callers; ++caller) {
            threads.emplace_back([=] {
                for (int i = 0; i < calls; ++i)
                    call(caller);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    }
};

TEST_F(StateFile, AMissingFileIsNamed)
{
    EXPECT_THAT(nodeOf("sdc"),
                Fails(78, "simulator: cannot read " + statePath() + ": No such file"));
    EXPECT_FALSE(std::filesystem::exists(statePath()));
}

TEST_F(StateFile, AMissingFolderIsNamed)
{
    EXPECT_THAT(start({"/usr/bin/env", "KOVM_SIMULATOR_STATE=/nowhere/state.json",
                       SIMULATOR_TOOLS "/kodisk", "scandisks"})
                    .finish(),
                Fails(78, "/nowhere/state.json"));
}

TEST_F(StateFile, WithoutAVariableTheStateIsUnderRun)
{
    if (std::filesystem::exists("/run/kovm-simulator"))
        GTEST_SKIP() << "somebody uses the default state file";
    EXPECT_THAT(start({"/usr/bin/env", "-u", "KOVM_SIMULATOR_STATE", SIMULATOR_TOOLS "/kodisk",
                       "scandisks"})
                    .finish(),
                Fails(78, "/run/kovm-simulator/state.json"));
}

TEST_F(StateFile, ADamagedFileIsNamedAndLeftAlone)
{
    for (const char* text : {"", "{", "{\"arrays\": []", "{}}", "\xff", "[]", "null"}) {
        write(std::string(text));
        EXPECT_THAT(kodisk({"rm", "arr0_17"}), Fails(78, statePath())) << text;
        EXPECT_EQ(textOf(statePath()), text);
    }
}

TEST_F(StateFile, InAReadOnlyFolderNothingIsDone)
{
    useScenario("stale-repaired-by-waiting");
    const std::string before = textOf(statePath());
    const std::string script = "mount --bind \"$1\" \"$1\" && mount -o remount,bind,ro \"$1\" && "
                               "exec \"$2\" scandisks";
    if (start({"/usr/bin/unshare", "-Urm", "true"}).finish().status != 0) {
        endWithoutNamespaces();
        return;
    }
    EXPECT_THAT(start({"/usr/bin/unshare", "-Urm", "sh", "-c", script, "sh", folder(),
                       SIMULATOR_TOOLS "/kodisk"})
                    .finish(),
                Fails(78, "Read-only file system"));
    EXPECT_EQ(textOf(statePath()), before);
}

TEST_F(StateFile, AStateThatCannotBeReplacedIsLeftAlone)
{
    useScenario("healthy");
    const std::string before = textOf(statePath());
    create_directory(folder() / "state.json.new");
    EXPECT_THAT(kodisk({"scandisks"}), Fails(78, "cannot write " + statePath() + ".new"));
    EXPECT_EQ(textOf(statePath()), before);
}

TEST_F(StateFile, AStateThatIsAMountPointIsNamedAndLeftAlone)
{
    if (start({"/usr/bin/unshare", "-Urm", "true"}).finish().status != 0) {
        endWithoutNamespaces();
        return;
    }
    useScenario("healthy");
    const std::string before = textOf(statePath());
    EXPECT_THAT(start({"/usr/bin/unshare", "-Urm", "sh", "-c",
                       "mount --bind \"$1\" \"$1\" && exec \"$2\" scandisks", "sh", statePath(),
                       SIMULATOR_TOOLS "/kodisk"})
                    .finish(),
                Fails(78, "cannot replace " + statePath() + ": Device or resource busy"));
    EXPECT_EQ(textOf(statePath()), before);
}

TEST_F(StateFile, CallsInParallelLoseNoCount)
{
    useScenario("healthy");
    inParallel(8, 10, [this](int caller) {
        if (caller % 2 == 0)
            nodeOf("sdc");
        else
            kodisk({"scandisks"});
    });
    EXPECT_EQ(state()["calls"], Json({{"getdmpnode", 40}, {"scandisks", 40}}));
    EXPECT_EQ(log().size(), 80U);
}

TEST_F(StateFile, RescansInParallelAreAllCounted)
{
    useStale({{"rescans", 41}});
    inParallel(8, 5, [this](int) { kodisk({"scandisks", "device=sdc"}); });
    EXPECT_THAT(nodeOf("sdc"), Fails(1, "disk \"sdc\""));
    kodisk({"scandisks", "device=sdc"});
    EXPECT_EQ(nodeOf("sdc").status, 0);
}

TEST_F(StateFile, AReaderAlwaysFindsItWhole)
{
    useScenario("healthy");
    std::atomic<bool> done = false;
    int torn = 0;
    int reads = 0;
    std::thread reader([&] {
        for (; !done; ++reads)
            torn += Json::accept(textOf(statePath())) ? 0 : 1;
    });
    inParallel(4, 10, [this](int) { nodeOf("sdc"); });
    done = true;
    reader.join();
    EXPECT_GT(reads, 0);
    EXPECT_EQ(torn, 0);
}

TEST_F(StateFile, ACallWaitsForTheLock)
{
    useScenario("healthy");
    {
        const Descriptor lock = openFile((statePath() + ".lock").c_str(), O_RDONLY | O_CREAT);
        flock(lock.number(), LOCK_EX);
        EXPECT_THAT(limited(tool("kodisk", {"scandisks"})), Fails(limitPassed, ""));
    }
    EXPECT_THAT(kodisk({"scandisks"}), Succeeds());
    EXPECT_EQ(state()["calls"], Json({{"scandisks", 1}}));
}

TEST_F(StateFile, AnUnwantedCallIsNotWritten)
{
    useScenario("healthy");
    const auto before = std::filesystem::last_write_time(statePath());
    kodisk({"other"});
    EXPECT_EQ(std::filesystem::last_write_time(statePath()), before);
}

} // namespace

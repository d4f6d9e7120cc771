// What other accounts have put in the trace file's place, in a folder that they may write: links,
// FIFOs and files.
#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "append_file_test.h"
#include "tests/support/child.h"
#include "tests/support/process.h"

using koze_pdk_4_4::CZeTraceFileSink;

namespace {

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

TEST_F(InASharedFolder, WhatIsRefusedIsAQuestionOfPermission)
{
    std::ofstream(trace) << "theirs\n";
    giveAway(trace);
    try {
        const CZeTraceFileSink sink(6, trace);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
        EXPECT_STREQ(error.code().category().name(), "refusal");
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

TEST_F(AppendFile, FilesWithSeveralNamesAreRefusedInASharedFolder)
{
    std::filesystem::create_hard_link(victim, trace);
    EXPECT_EQ(refusal(trace), severalNames);
    EXPECT_TRUE(isUntouched());
    chmod(shared.c_str(), 0755);
    EXPECT_EQ(refusal(trace), "");
}

} // namespace

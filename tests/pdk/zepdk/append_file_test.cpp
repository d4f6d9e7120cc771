// Where the trace goes: FIFOs, what a caller passes, standard streams, paths over links, new files.
#include "pdk/include/czetracesink.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "append_file_test.h"
#include "tests/support/child.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

using koze_pdk_4_4::CZeTraceFileSink;
using testing::EndsWith;

namespace {

constexpr char unreadFifo[] = "FIFO that nobody reads";

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

TEST_F(AppendFile, AFifoThatMayNotBeWrittenIsRefusedForThat)
{
    chmod(folder.file("").c_str(), 0755);
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0444), 0);
    EXPECT_TRUE(holdsInChild([&] {
        if (geteuid() == 0)
            becomeStranger();
        return refusal(fifo) == "Permission denied";
    }));
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

// Each allocation of a subcommand fails once.
#include <gtest/gtest.h>

#include "list.h"
#include "partitions.h"
#include "paths/paths.h"
#include "show.h"
#include "tests/command/allocation_failures.h"
#include "tests/command/made_up_command.h"

namespace {

using command::Options;
using command::OutputStream;

class SubcommandAllocations : public MadeUpCommand {
protected:
    SubcommandAllocations()
    {
        m_made.addDisk("sda", "8:0", "2:0:0:0");
        m_made.addPartition("sda", "sda1", "8:1");
        m_made.addMap("dm-0", "254:0", "mpatha", "mpath-3600", {"sda"});
    }

    /// Returns how many have failed.
    std::size_t failEach(const Subcommand& run, const std::vector<std::string>& arguments) const
    {
        const auto options = std::get<Options>(parseOptions(arguments, command::subcommands()));
        return AllocationFailures([&](OutputStream& output) {
                   run(options, output, command::Machine(m_made.roots()));
               })
            .failEach();
    }
};

TEST_F(SubcommandAllocations, OfListFailOneByOne)
{
    EXPECT_GE(failEach(command::listDevices, {"list"}), 140U);
}

TEST_F(SubcommandAllocations, OfShowFailOneByOne)
{
    EXPECT_GE(failEach(command::showPaths, {"show", "--resolve", "dm-0"}), 90U);
}

TEST_F(SubcommandAllocations, OfExplainFailOneByOne)
{
    EXPECT_GE(failEach(command::explainPaths, {"explain", "/dev/mapper/mpatha"}), 190U);
}

TEST_F(SubcommandAllocations, OfAppendFailOneByOne)
{
    EXPECT_GE(failEach(command::appendNumber, {"append", "/dev/sda", "1"}), 28U);
    EXPECT_GE(failEach(command::appendNumber, {"append", "--existing", "/dev/sda", "1"}), 70U);
}

TEST_F(SubcommandAllocations, OfStripFailOneByOne)
{
    EXPECT_GE(failEach(command::stripNumbers, {"strip", "/dev/sda1"}), 26U);
    EXPECT_GE(failEach(command::stripNumbers, {"strip", "--existing", "/dev/sda1"}), 70U);
}

TEST_F(SubcommandAllocations, OfPrefixesFailOneByOne)
{
    const Subcommand run = [](const Options& options, OutputStream& output,
                              const command::Machine&) {
        return options.subcommand->run(options, output);
    };
    EXPECT_GE(failEach(run, {"prefixes"}), 30U);
}

TEST_F(SubcommandAllocations, OfPathsFailOneByOne)
{
    const command::MapStatus status{{}, "multipath", "2 0 1 0 1 1 A 0 1 0 8:0 A 0"};
    const Subcommand run = [&](const Options& options, OutputStream& output,
                               const command::Machine&) {
        command::StopRequest stop;
        const auto statusOf = [&](const command::BlockDevice&) { return status; };
        return listPaths(options, output, {m_made.roots(), statusOf, {}}, stop);
    };
    EXPECT_GE(failEach(run, {"paths"}), 100U);
}

TEST_F(SubcommandAllocations, OfEachFormFailOneByOne)
{
    for (const char* form : {"-J", "--json-lines", "-r", "-P"}) {
        SCOPED_TRACE(form);
        EXPECT_GE(failEach(command::listDevices, {"list", form}), 130U);
    }
}

} // namespace

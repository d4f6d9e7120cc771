// A file's sink in a host without memory: each allocation in turn fails.
#include "pdk/include/czetracesink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <new>

#include "tests/support/allocation_probe.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/temporary_folder.h"

using koze_pdk_4_4::CZeTraceFileSink;

namespace {

class FileSinkMemory : public testing::Test {
protected:
    /// Opens a sink and writes two lines while allocation number `failing` fails. Returns whether
    /// it failed.
    bool failsAt(std::size_t failing)
    {
        std::filesystem::remove(m_path);
        std::uint64_t dropped = 0;
        bool hasOpened = false;
        const AllocationProbe probe(failing);
        try {
            CZeTraceFileSink sink(6, m_path);
            hasOpened = true;
            sink.write(3, "the first line");
            sink.write(3, "the second line");
            dropped = sink.dropped();
        } catch (const std::bad_alloc&) {
            EXPECT_FALSE(hasOpened) << failing;
        }
        const AllocationProbe::Pause pause;
        EXPECT_EQ(probe.living().size(), 0U) << failing;
        if (hasOpened) {
            EXPECT_EQ(linesOfFile() + dropped, 2U) << failing;
            EXPECT_EQ(dropped, probe.failed() ? 1U : 0U) << failing;
        }
        return probe.failed();
    }

private:
    std::uint64_t linesOfFile() const
    {
        std::ifstream file(m_path);
        return static_cast<std::uint64_t>(std::count(std::istreambuf_iterator<char>(file),
                                                     std::istreambuf_iterator<char>(), '\n'));
    }

    const TemporaryFolder m_folder;
    const std::string m_path = m_folder.file("a-trace-file-of-a-long-name.log");
};

TEST_F(FileSinkMemory, ThatIsOutOpensNoSinkOrLosesOneLine)
{
    failsAt(0);
    const std::set<std::string> descriptors = openDescriptors();
    std::size_t failures = 0;
    while (failsAt(failures + 1))
        ++failures;
    EXPECT_EQ(openDescriptors(), descriptors);
    std::cout << failures << " failed allocations\n";
    EXPECT_GE(failures, 4U);
}

} // namespace

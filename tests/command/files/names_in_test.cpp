#include "files/names_in.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <fstream>
#include <new>

#include <dirent.h>
#include <dlfcn.h>

#include "tests/support/allocation_probe.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/temporary_folder.h"

namespace {

/// How many more entries can be read; all when negative.
int entriesLeft = -1;

} // namespace

/// Replaces the C library's function.
extern "C" dirent* readdir(DIR* folder)
{
    if (entriesLeft == 0) {
        errno = EIO;
        return nullptr;
    }
    --entriesLeft;
    const auto real = reinterpret_cast<decltype(&readdir)>(dlsym(RTLD_NEXT, "readdir"));
    return real(folder);
}

namespace {

using command::namesIn;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class NamesIn : public testing::Test {
protected:
    NamesIn()
    {
        for (const char* name : {"sda", ".hidden", "..more", "a-name-that-takes-memory-of-its-own"})
            std::ofstream(m_folder.file(name)).put('x');
    }

    ~NamesIn() override
    {
        entriesLeft = -1;
        EXPECT_EQ(openDescriptors(), m_descriptors);
    }

    const TemporaryFolder m_folder;
    const std::string m_path = m_folder.file("");
    std::error_code m_error = std::make_error_code(std::errc::file_exists);

private:
    const std::set<std::string> m_descriptors = openDescriptors();
};

TEST_F(NamesIn, AFolderAreAllButItselfAndItsParent)
{
    EXPECT_THAT(
        namesIn(m_path, m_error),
        UnorderedElementsAre("sda", ".hidden", "..more", "a-name-that-takes-memory-of-its-own"));
    EXPECT_FALSE(m_error);
}

TEST_F(NamesIn, AMissingFolderAreNoneWithTheReason)
{
    EXPECT_THAT(namesIn(m_folder.file("missing"), m_error), IsEmpty());
    EXPECT_EQ(m_error, std::errc::no_such_file_or_directory);
    EXPECT_THAT(namesIn(m_folder.file("missing")), IsEmpty());
}

TEST_F(NamesIn, AFileAreNoneWithTheReason)
{
    EXPECT_THAT(namesIn(m_folder.file("sda"), m_error), IsEmpty());
    EXPECT_EQ(m_error, std::errc::not_a_directory);
}

TEST_F(NamesIn, AFolderThatCannotBeReadToItsEndAreNoneWithTheReason)
{
    entriesLeft = 4;
    EXPECT_THAT(namesIn(m_path, m_error), IsEmpty());
    EXPECT_EQ(entriesLeft, 0);
    EXPECT_EQ(m_error, std::errc::io_error);
}

/// Whether that many allocations are made. Expects that the one that fails ends the call.
bool failsAt(std::size_t number, const std::string& folder)
{
    const AllocationProbe probe(number);
    bool threw = false;
    try {
        namesIn(folder);
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    const AllocationProbe::Pause pause;
    EXPECT_EQ(threw, probe.failed()) << number;
    EXPECT_THAT(probe.living(), IsEmpty()) << number;
    return threw;
}

TEST_F(NamesIn, WithoutMemoryThrowAndLeaveNothingOpen)
{
    std::size_t failures = 0;
    while (failsAt(failures + 1, m_path))
        ++failures;
    EXPECT_GE(failures, 4U);
}

} // namespace

#include "doctor/replace_file.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/support/temporary_folder.h"

namespace {

using command::replaceFile;

class ReplaceFile : public testing::Test {
protected:
    std::string path() const { return m_folder.file("dmpclaim.prom"); }

    std::string text() const { return textOf(path()); }

    std::size_t files() const
    {
        const std::filesystem::directory_iterator entries(m_folder.file(""));
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(ReplaceFile, MakesAFileThatOthersMayRead)
{
    const mode_t before = umask(077);
    replaceFile(path(), "new\n");
    umask(before);
    EXPECT_EQ(text(), "new\n");
    EXPECT_EQ(files(), 1U);
    EXPECT_EQ(std::filesystem::status(path()).permissions(), std::filesystem::perms(0644));
}

TEST_F(ReplaceFile, TakesThePlaceOfTheOldFileAtOnce)
{
    std::ofstream(path()) << "old\n";
    std::ifstream reader(path());
    replaceFile(path(), "new\n");
    EXPECT_EQ(text(), "new\n");
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(line, "old"); // the old file is not written to
    EXPECT_EQ(files(), 1U);
}

TEST_F(ReplaceFile, SaysWhichFileCannotBeWritten)
{
    try {
        replaceFile("/nonexistent/dmpclaim.prom", "new\n");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
        EXPECT_THAT(error.what(), testing::HasSubstr("'/nonexistent/dmpclaim.prom'"));
    }
}

TEST_F(ReplaceFile, LeavesTheOldFileWhenTheNewOneCannotBeWritten)
{
    std::ofstream(path()) << "old\n";
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{100, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_THROW(replaceFile(path(), std::string(200, 'x')), std::system_error);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(text(), "old\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(ReplaceFile, LeavesNoFileBehindWhenItCannotBeRenamed)
{
    std::filesystem::create_directory(path());
    EXPECT_THROW(replaceFile(path(), "new\n"), std::system_error);
    EXPECT_EQ(files(), 1U);
}

} // namespace

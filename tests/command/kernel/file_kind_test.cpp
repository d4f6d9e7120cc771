#include "kernel/file_kind.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temporary_folder.h"

namespace {

using command::FileKind;
using command::fileKind;

TEST(FileKind, IsWhatStandsThere)
{
    const TemporaryFolder folder;
    std::ofstream(folder.file("file")).put('\n');
    EXPECT_EQ(fileKind(folder.file("file")), FileKind::regular);
    EXPECT_EQ(fileKind(folder.file(".")), FileKind::other);
    EXPECT_EQ(fileKind("/dev/null"), FileKind::other);
    EXPECT_EQ(fileKind(folder.file("nothing")), FileKind::none);
    EXPECT_EQ(fileKind(folder.file("file/below")), FileKind::none);
    EXPECT_EQ(fileKind(""), FileKind::none);
}

TEST(FileKind, NoFileHasANulInItsPath)
{
    EXPECT_EQ(fileKind(std::string("/dev/null\0x", 11)), FileKind::none);
}

TEST(FileKind, LinksAreFollowed)
{
    const TemporaryFolder folder;
    std::filesystem::create_symlink("file", folder.file("link"));
    EXPECT_EQ(fileKind(folder.file("link")), FileKind::none);
    std::ofstream(folder.file("file")).put('\n');
    EXPECT_EQ(fileKind(folder.file("link")), FileKind::regular);
}

} // namespace

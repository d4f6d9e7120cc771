#include <gmock/gmock.h>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

using std::filesystem::path;
using testing::AllOf;
using testing::HasSubstr;

TEST(Payload, ARelativeFolderForTemporaryFilesWillDo)
{
    const TemporaryFolder folder;
    const path top = path(folder.file("x")).parent_path();
    create_directories(top / "temporary");
    create_directories(top / "installed" / "bin");
    copy_file("/bin/true", top / "installed" / "bin" / "program");
    writeScript(top / "busybox", "cat");
    const Result ended = Process({"env", "--chdir=" + top.string(), "TMPDIR=temporary",
                                  "CDPATH=/usr", VM_PAYLOAD, "installed", "busybox"})
                             .finish();
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_THAT(ended.output,
                AllOf(HasSubstr("./init\n"), HasSubstr("./opt/dmpclaim/bin/program\n"),
                      HasSubstr("/libc.so.6\n")));
    EXPECT_TRUE(is_empty(top / "temporary"));
}

} // namespace

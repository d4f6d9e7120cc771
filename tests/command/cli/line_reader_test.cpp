#include "cli/line_reader.h"

#include <atomic>
#include <cerrno>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/process.h"

using command::LineReader;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::atomic<int> interruptedReads = 0; // that are still to come

} // namespace

extern "C" ssize_t read(int descriptor, void* block, size_t size)
{
    if (interruptedReads > 0) {
        --interruptedReads;
        errno = EINTR;
        return -1;
    }
    return syscall(SYS_read, descriptor, block, size);
}

namespace {

std::vector<std::string> allOf(LineReader lines)
{
    std::vector<std::string> result;
    while (const std::optional<std::string> line = lines.next())
        result.push_back(*line);
    return result;
}

std::vector<std::string> linesOf(std::string_view input)
{
    const Descriptor file = fileHolding(input);
    return allOf(LineReader(file.number(), [] {}));
}

TEST(LineReader, LinesEndAtLineFeeds)
{
    EXPECT_THAT(linesOf(""), IsEmpty());
    EXPECT_THAT(linesOf("/dev/sda\n/dev/sdb\n"), ElementsAre("/dev/sda", "/dev/sdb"));
}

TEST(LineReader, ALastLineWithoutItsEndCounts)
{
    EXPECT_THAT(linesOf("a"), ElementsAre("a"));
    EXPECT_THAT(linesOf("a\nb"), ElementsAre("a", "b"));
}

TEST(LineReader, EmptyLinesAreSkipped)
{
    EXPECT_THAT(linesOf("\n"), IsEmpty());
    EXPECT_THAT(linesOf("\na\n\n\nb\n"), ElementsAre("a", "b"));
}

TEST(LineReader, EmptyNamesBetweenNulsAreKept)
{
    using namespace std::string_literals;
    EXPECT_THAT(linesOf("a\0\0b\0"s), ElementsAre("a", "", "b"));
}

TEST(LineReader, TheFirstSeparatorMetIsTheOnlyOne)
{
    using namespace std::string_literals;
    EXPECT_THAT(linesOf("a\0b\nc\0"s), ElementsAre("a", "b\nc"));
    EXPECT_THAT(linesOf("a\nb\0c\n"s), ElementsAre("a", "b\0c"s));
    EXPECT_THAT(linesOf("\0\n"s), ElementsAre("", "\n"));
}

TEST(LineReader, ACarriageReturnAtALinesEndIsTakenOffWithOneWarning)
{
    testing::internal::CaptureStderr();
    EXPECT_THAT(linesOf("a\r\nb\rc\r\n\r\nd\r\r\ne\r"), ElementsAre("a", "b\rc", "d\r", "e"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "dmpclaim: lines of standard input end with a carriage return, which is taken off; "
              "to keep it, separate the names by NULs\n");
}

TEST(LineReader, ACarriageReturnBetweenNulsIsKept)
{
    using namespace std::string_literals;
    testing::internal::CaptureStderr();
    EXPECT_THAT(linesOf("a\r\0b\n\0"s), ElementsAre("a\r", "b\n"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(LineReader, ASeparatorCanBeSet)
{
    using namespace std::string_literals;
    const Descriptor file = fileHolding("a\nb\0c\nd"s);
    LineReader lines(file.number(), [] {});
    lines.setSeparator('\0');
    EXPECT_THAT(allOf(std::move(lines)), ElementsAre("a\nb", "c\nd"));
}

TEST(LineReader, StaysAtTheEnd)
{
    const Descriptor file = fileHolding("a");
    LineReader lines(file.number(), [] {});
    EXPECT_EQ(lines.next(), "a");
    EXPECT_EQ(lines.next(), std::nullopt);
    EXPECT_EQ(lines.next(), std::nullopt);
}

TEST(LineReader, ALineMayComeInPieces)
{
    Pipe pipe = makePipe();
    const std::vector<std::string_view> pieces{"/dev", "/sd", "a\n/d", "ev/sdb", ""};
    auto piece = pieces.begin();
    LineReader lines(pipe.reader.number(), [&] {
        ASSERT_NE(piece, pieces.end());
        ASSERT_GE(write(pipe.writer.number(), piece->data(), piece->size()), 0);
        if (piece->empty())
            pipe.writer.close();
        ++piece;
    });
    EXPECT_EQ(lines.next(), "/dev/sda");
    EXPECT_EQ(piece - pieces.begin(), 3); // no more reads than needed
    EXPECT_EQ(lines.next(), "/dev/sdb");
    EXPECT_EQ(lines.next(), std::nullopt);
}

TEST(LineReader, LinesLongerThanABlockAreWhole)
{
    const std::string path(300000, 'x');
    EXPECT_THAT(linesOf(path + '\n' + path + "\nend"), ElementsAre(path, path, "end"));
}

TEST(LineReader, AReadThatASignalInterruptsIsRepeated)
{
    interruptedReads = 3;
    EXPECT_THAT(linesOf("a\nb\n"), ElementsAre("a", "b"));
    EXPECT_EQ(interruptedReads, 0);
}

TEST(LineReader, AnInputThatCannotBeReadIsAnError)
{
    const Descriptor folder = openFile("/", O_RDONLY | O_DIRECTORY);
    LineReader lines(folder.number(), [] {});
    EXPECT_THROW(lines.next(), std::system_error);
}

} // namespace

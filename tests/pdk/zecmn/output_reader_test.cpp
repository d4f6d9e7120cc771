#include "pdk/zecmn/output_reader.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

using koze_pdk_4_4::runner::Budget;
using koze_pdk_4_4::runner::openPipe;
using koze_pdk_4_4::runner::OutputReader;
using koze_pdk_4_4::runner::Pipe;

namespace {

/// The error of the next read of a pipe; 0 when there is none.
int readError = 0;

} // namespace

extern "C" ssize_t read(int descriptor, void* bytes, std::size_t size)
{
    if (readError != 0) {
        errno = std::exchange(readError, 0);
        return -1;
    }
    return syscall(SYS_read, descriptor, bytes, size);
}

namespace {

using Lines = std::vector<std::string>;

class OutputReaderTest : public testing::Test {
protected:
    void print(const std::string& text)
    {
        ASSERT_EQ(write(m_pipe.writeEnd.number(), text.data(), text.size()), text.size());
    }

    Pipe m_pipe = openPipe();
    Lines m_lines;
    Budget m_budget{std::size_t{1} << 30, std::size_t{1} << 30};
    OutputReader m_reader{std::move(m_pipe.readEnd), m_lines, m_budget};
};

TEST_F(OutputReaderTest, FinishingTakesWhatIsThereAndWaitsForNoMore)
{
    print("a\nb");
    m_reader.finish();
    EXPECT_EQ(m_lines, Lines({"a", "b"}));
    EXPECT_TRUE(m_reader.isOpen());
}

TEST_F(OutputReaderTest, FinishingTakesAsMuchAsThereIs)
{
    ASSERT_GE(fcntl(m_pipe.writeEnd.number(), F_SETPIPE_SZ, 1 << 19), 1 << 19);
    const std::string text(1 << 19, 'x');
    print(text);
    m_reader.finish();
    EXPECT_EQ(m_lines, Lines({text}));
}

TEST_F(OutputReaderTest, FinishingAnEmptyPipeGivesNoLine)
{
    m_reader.finish();
    EXPECT_EQ(m_lines, Lines());
}

TEST_F(OutputReaderTest, ReadingTakesWhatIsThereOnce)
{
    print("a\nb");
    m_reader.read();
    EXPECT_EQ(m_lines, Lines({"a"}));
    print("c\n");
    m_reader.read();
    EXPECT_EQ(m_lines, Lines({"a", "bc"}));
}

TEST_F(OutputReaderTest, ThePipeIsClosedAtItsEnd)
{
    print("a");
    m_pipe.writeEnd.reset();
    m_reader.read();
    EXPECT_TRUE(m_reader.isOpen());
    m_reader.read();
    EXPECT_FALSE(m_reader.isOpen());
    EXPECT_EQ(m_reader.descriptor(), -1);
    m_reader.finish();
    EXPECT_EQ(m_lines, Lines({"a"}));
}

TEST_F(OutputReaderTest, ThePipeIsClosedAtItsEndThoughSomethingElseWasInterruptedBefore)
{
    m_pipe.writeEnd.reset();
    errno = EINTR;
    m_reader.read();
    EXPECT_FALSE(m_reader.isOpen());
}

TEST_F(OutputReaderTest, AnInterruptedReadLosesNothing)
{
    print("a\n");
    readError = EINTR;
    m_reader.read();
    EXPECT_TRUE(m_reader.isOpen());
    readError = EINTR;
    m_reader.finish();
    EXPECT_EQ(readError, 0);
    EXPECT_EQ(m_lines, Lines({"a"}));
}

TEST_F(OutputReaderTest, APipeThatCannotBeReadIsClosed)
{
    print("a\n");
    readError = EIO;
    m_reader.finish();
    EXPECT_FALSE(m_reader.isOpen());
    EXPECT_EQ(m_lines, Lines());
}

} // namespace

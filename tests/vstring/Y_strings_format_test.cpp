#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "guarded_buffer.h"
#include "vstring/Y_strings.h"

using namespace std::string_literals;

namespace {

/// Room for `size` characters, all of them 'd', that ends at an inaccessible page.
template <class Char>
class Destination {
public:
    explicit Destination(std::size_t size)
        : m_size(size), m_begin(m_buffer.place(std::vector<Char>(size, Char('d'))))
    {}

    operator Char*() { return m_begin; }

    std::basic_string<Char> written() const { return {m_begin, m_size}; }

private:
    std::size_t m_size;
    GuardedBuffer<Char> m_buffer;
    Char* m_begin;
};

using NarrowDestination = Destination<char>;
using WideDestination = Destination<wchar_t>;

TEST(BoundedFormatter, ReturnsTheLengthOfATextThatFits)
{
    NarrowDestination dst(8);
    EXPECT_EQ(Y_snprintf(dst, 8, "p%d%s", 12, "x"), 4);
    EXPECT_EQ(dst.written(), "p12x\0ddd"s);
}

TEST(BoundedFormatter, TakesATextThatJustFits)
{
    NarrowDestination dst(6);
    EXPECT_EQ(Y_snprintf(dst, 6, "%s", "abcde"), 5);
    EXPECT_EQ(dst.written(), "abcde\0"s);
}

TEST(BoundedFormatter, CutsATextThatMissesItsTerminatorsPlace)
{
    NarrowDestination dst(5);
    EXPECT_EQ(Y_snprintf(dst, 5, "%s", "abcde"), 4);
    EXPECT_EQ(dst.written(), "abcd\0"s);
}

TEST(BoundedFormatter, CutsALongTextToSizeMinusOne)
{
    NarrowDestination dst(32);
    EXPECT_EQ(Y_snprintf(dst, 32, "%s", std::string(40, 'x').c_str()), 31);
    EXPECT_EQ(dst.written(), std::string(31, 'x') + '\0');
}

TEST(BoundedFormatter, LeavesOnlyATerminatorInSizeOne)
{
    NarrowDestination dst(1);
    EXPECT_EQ(Y_snprintf(dst, 1, "%s", "abc"), 0);
    EXPECT_EQ(dst.written(), "\0"s);
}

TEST(BoundedFormatter, WritesNothingInSizeZero)
{
    NarrowDestination dst(4);
    EXPECT_EQ(Y_snprintf(dst, 0, "%s", "abc"), -1);
    EXPECT_EQ(dst.written(), "dddd");
}

TEST(BoundedFormatter, RefusesANullDestination)
{
    EXPECT_EQ(Y_snprintf(nullptr, 8, "%s", "abc"), -1);
}

TEST(BoundedFormatter, EmptiesTheDestinationWhenTheTextCannotBeFormatted)
{
    NarrowDestination dst(8);
    EXPECT_EQ(Y_snprintf(dst, 8, "ab%ls", L"\x7fffffff"), 0);
    EXPECT_EQ(dst.written()[0], '\0');
}

/// Room for so many bytes, of which only the touched ones take memory.
class HugeDestination {
public:
    explicit HugeDestination(std::size_t size)
        : m_size(size),
          m_begin(static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)))
    {
        if (m_begin == MAP_FAILED)
            throw std::bad_alloc();
        m_begin[size - 1] = 'd';
    }

    ~HugeDestination() { munmap(m_begin, m_size); }
    HugeDestination(const HugeDestination&) = delete;
    HugeDestination& operator=(const HugeDestination&) = delete;

    operator char*() { return m_begin; }
    char last() const { return m_begin[m_size - 1]; }
    std::size_t size() const { return m_size; }

private:
    std::size_t m_size;
    char* m_begin;
};

TEST(BoundedFormatter, TakesTheLargestSignedSizeAsItIs)
{
    HugeDestination dst(INT32_MAX);
    EXPECT_EQ(Y_snprintf(dst, dst.size(), "%s", "abc"), 3);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst.last(), 'd');
}

TEST(BoundedFormatter, TakesASizeWithTheSignBitForTooSmall)
{
    HugeDestination dst(std::size_t{1} << 31);
    EXPECT_EQ(Y_snprintf(dst, dst.size(), "%s", "abc"), INT32_MAX);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst.last(), '\0');
}

TEST(BoundedFormatter, TakesASizeWithTheSignBitForTooSmallForTheEmptyTextToo)
{
    HugeDestination dst(std::size_t{1} << 31);
    EXPECT_EQ(Y_snprintf(dst, dst.size(), "%s", ""), INT32_MAX);
    EXPECT_STREQ(dst, "");
    EXPECT_EQ(dst.last(), '\0');
}

TEST(BoundedFormatter, ComparesWithTheLowBitsOfALargeSize)
{
    HugeDestination dst((std::size_t{1} << 32) + 3);
    EXPECT_EQ(Y_snprintf(dst, dst.size(), "%s", "ab"), 2);
    EXPECT_EQ(dst.last(), 'd');
    EXPECT_EQ(Y_snprintf(dst, dst.size(), "%s", "abc"), 2);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst.last(), '\0');
}

TEST(BoundedWideFormatter, ReturnsTheLengthOfATextThatFits)
{
    WideDestination dst(8);
    EXPECT_EQ(Y_snwprintf(dst, 8, L"p%d%ls", 12, L"\u00e4"), 4);
    EXPECT_EQ(dst.written(), L"p12\u00e4\0ddd"s);
}

TEST(BoundedWideFormatter, TakesATextThatJustFits)
{
    WideDestination dst(6);
    EXPECT_EQ(Y_snwprintf(dst, 6, L"%ls", L"abcde"), 5);
    EXPECT_EQ(dst.written(), L"abcde\0"s);
}

TEST(BoundedWideFormatter, FailsForATextThatDoesNotFitButKeepsItsBeginning)
{
    WideDestination dst(5);
    EXPECT_EQ(Y_snwprintf(dst, 5, L"%ls", L"abcde"), -1);
    EXPECT_EQ(dst.written(), L"abcd\0"s);
}

TEST(BoundedWideFormatter, HasRoomForTheEmptyTextInSizeOne)
{
    WideDestination dst(1);
    EXPECT_EQ(Y_snwprintf(dst, 1, L"%ls", L""), 0);
    EXPECT_EQ(dst.written(), L"\0"s);
    dst[0] = L'd';
    EXPECT_EQ(Y_snwprintf(dst, 1, L"%ls", L"a"), -1);
    EXPECT_EQ(dst.written(), L"\0"s);
}

TEST(BoundedWideFormatter, WritesNothingInSizeZero)
{
    WideDestination dst(4);
    EXPECT_EQ(Y_snwprintf(dst, 0, L"%ls", L"abc"), -1);
    EXPECT_EQ(dst.written(), L"dddd");
}

TEST(BoundedWideFormatter, FormatsForANullDestinationAndDropsTheText)
{
    EXPECT_EQ(Y_snwprintf(nullptr, 4, L"%ls", L"abc"), 3);
    EXPECT_EQ(Y_snwprintf(nullptr, 4, L"%ls", L"abcd"), -1);
}

TEST(BoundedWideFormatter, KeepsWhatCameBeforeAnArgumentThatCannotBeFormatted)
{
    WideDestination dst(8);
    EXPECT_EQ(Y_snwprintf(dst, 8, L"ab%99999999999d", 1), -1);
    EXPECT_EQ(dst.written(), L"ab\0ddddd"s);
}

TEST(BoundedWideFormatter, EndsTheTextAtAZeroThatAnArgumentPutsIn)
{
    WideDestination dst(6);
    EXPECT_EQ(Y_snwprintf(dst, 6, L"a%lcb", wint_t{0}), 3);
    EXPECT_EQ(dst.written(), L"a\0dddd"s);
}

TEST(BoundedWideFormatter, MayFormatTheDestinationItself)
{
    WideDestination dst(8);
    ASSERT_EQ(Y_snwprintf(dst, 8, L"abc"), 3);
    EXPECT_EQ(Y_snwprintf(dst, 8, L"[%ls]", static_cast<wchar_t*>(dst)), 5);
    EXPECT_EQ(dst.written(), L"[abc]\0dd"s);
}

TEST(BoundedWideFormatter, FailsForASizeBeyondTheAddressSpace)
{
    constexpr std::size_t wide = sizeof(wchar_t);
    for (const std::size_t size : {PTRDIFF_MAX / wide + 1, SIZE_MAX / wide + 3, SIZE_MAX}) {
        WideDestination dst(4);
        EXPECT_EQ(Y_snwprintf(dst, size, L"%ls", L"ab"), -1) << size;
        EXPECT_EQ(dst.written(), L"dddd") << size;
    }
}

} // namespace

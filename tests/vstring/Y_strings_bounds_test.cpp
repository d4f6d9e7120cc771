// The limits of the copy, append and check functions, one by one.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include "bounded_family.h"
#include "guarded_buffer.h"

using namespace std::string_literals;

namespace {

template <class Family>
class BoundedString : public testing::Test {
protected:
    using Char = typename Family::Char;

    /// Returns `ascii` with a terminator, valid until the next call.
    const Char* text(const std::string& ascii)
    {
        m_text.assign(ascii.begin(), ascii.end());
        return m_text.c_str();
    }

    /// Returns a destination that begins with `ascii` as it is and goes on in 'd's.
    Char* destination(const std::string& ascii)
    {
        m_destination.assign(ascii.begin(), ascii.end());
        m_destination.resize(10, Char('d'));
        return m_destination.data();
    }

    /// The ten characters of the destination.
    std::string written() const
    {
        std::string ascii;
        for (const Char character : m_destination)
            ascii += static_cast<char>(character);
        return ascii;
    }

private:
    std::basic_string<Char> m_text;
    std::vector<Char> m_destination;
};

using Families = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(BoundedString, Families, );

TYPED_TEST(BoundedString, CopyWritesNothingBehindTheTerminator)
{
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abc"), 10), 3);
    EXPECT_EQ(this->written(), "abc\0dddddd"s);
}

TYPED_TEST(BoundedString, CopyCutsALongerSource)
{
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abcd"), 4), 3);
    EXPECT_EQ(this->written(), "abc\0dddddd"s);
}

TYPED_TEST(BoundedString, CopyTakesASourceThatJustFits)
{
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abc"), 4), 3);
    EXPECT_EQ(this->written(), "abc\0dddddd"s);
}

TYPED_TEST(BoundedString, CopyIntoSizeOneWritesOnlyATerminator)
{
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abc"), 1), 0);
    EXPECT_EQ(this->written(), "\0ddddddddd"s);
}

TYPED_TEST(BoundedString, CopyNeedsSourceAndDestinationAndASize)
{
    EXPECT_EQ(TypeParam::copy(nullptr, this->text("abc"), 10), 0);
    EXPECT_EQ(TypeParam::copy(this->destination(""), nullptr, 10), 0);
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abc"), 0), 0);
    EXPECT_EQ(this->written(), "dddddddddd");
}

TYPED_TEST(BoundedString, CopyReturnsThePlaceOfTheFirstCharacterThatFoundNoRoom)
{
    const auto* src = this->text("abc");
    EXPECT_EQ(src[TypeParam::copy(this->destination(""), src, 3)], 'c');
    EXPECT_EQ(src[TypeParam::copy(this->destination(""), src, 4)], 0);
}

TYPED_TEST(BoundedString, AppendWritesNothingBehindTheTerminator)
{
    EXPECT_EQ(TypeParam::append(this->destination("ab\0"s), this->text("cde"), 10), 3);
    EXPECT_EQ(this->written(), "abcde\0dddd"s);
}

TYPED_TEST(BoundedString, AppendCutsALongerSource)
{
    EXPECT_EQ(TypeParam::append(this->destination("ab\0"s), this->text("cde"), 4), 1);
    EXPECT_EQ(this->written(), "abc\0dddddd"s);
}

TYPED_TEST(BoundedString, AppendToTheEmptyStringCopies)
{
    EXPECT_EQ(TypeParam::append(this->destination("\0"s), this->text("abc"), 3), 2);
    EXPECT_EQ(this->written(), "ab\0ddddddd"s);
}

TYPED_TEST(BoundedString, AppendLeavesADestinationWithoutTerminatorAlone)
{
    EXPECT_EQ(TypeParam::append(this->destination("abcd\0"s), this->text("e"), 4), 0);
    EXPECT_EQ(this->written(), "abcd\0ddddd"s);
}

TYPED_TEST(BoundedString, AppendNeedsSourceAndDestinationAndASize)
{
    EXPECT_EQ(TypeParam::append(nullptr, this->text("abc"), 10), 0);
    EXPECT_EQ(TypeParam::append(this->destination("\0"s), nullptr, 10), 0);
    EXPECT_EQ(TypeParam::append(this->destination("\0"s), this->text("abc"), 0), 0);
    EXPECT_EQ(this->written(), "\0ddddddddd"s);
}

TYPED_TEST(BoundedString, AppendDoesNotWriteToAFullDestination)
{
    GuardedBuffer<typename TypeParam::Char> buffer;
    auto* full = buffer.place({'a', 'b', 0});
    auto* empty = full + 2;
    buffer.makeReadOnly();
    EXPECT_EQ(TypeParam::append(full, this->text("c"), 3), 0);
    EXPECT_EQ(TypeParam::append(empty, this->text("c"), 1), 0);
    EXPECT_EQ(TypeParam::appendCounted(full, this->text("c"), 1, 3), 0);
    EXPECT_EQ(TypeParam::appendCounted(full, this->text("c"), 0, 10), 0);
}

TYPED_TEST(BoundedString, PaddedCopyFillsTheCountWithZeros)
{
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("ab"), 5, 10), 5);
    EXPECT_EQ(this->written(), "ab\0\0\0\0dddd"s);
}

TYPED_TEST(BoundedString, PaddedCopyTakesNoMoreThanTheCount)
{
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("abcdef"), 3, 10), 3);
    EXPECT_EQ(this->written(), "abc\0dddddd"s);
}

TYPED_TEST(BoundedString, PaddedCopyWithACountOfSizeOrMoreFillsTheWholeDestination)
{
    for (const std::size_t count : {std::size_t{4}, std::size_t{5}, SIZE_MAX}) {
        EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("ab"), count, 4), 3);
        EXPECT_EQ(this->written(), "ab\0\0dddddd"s);
        EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("abcdef"), count, 4), 3);
        EXPECT_EQ(this->written(), "abc\0dddddd"s);
    }
}

TYPED_TEST(BoundedString, PaddedCopyOfNothingWritesOnlyATerminator)
{
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("abc"), 0, 10), 0);
    EXPECT_EQ(this->written(), "\0ddddddddd"s);
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("abc"), 5, 1), 0);
    EXPECT_EQ(this->written(), "\0ddddddddd"s);
}

TYPED_TEST(BoundedString, PaddedCopyNeedsSourceAndDestinationAndASize)
{
    EXPECT_EQ(TypeParam::copyPadded(nullptr, this->text("abc"), 5, 10), 0);
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), nullptr, 5, 10), 0);
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("abc"), 5, 0), 0);
    EXPECT_EQ(this->written(), "dddddddddd");
}

TYPED_TEST(BoundedString, CountedAppendTakesNoMoreThanTheCount)
{
    EXPECT_EQ(TypeParam::appendCounted(this->destination("ab\0"s), this->text("cdef"), 2, 10), 2);
    EXPECT_EQ(this->written(), "abcd\0ddddd"s);
}

TYPED_TEST(BoundedString, CountedAppendCutsWhatDoesNotFit)
{
    EXPECT_EQ(TypeParam::appendCounted(this->destination("ab\0"s), this->text("cdef"), 4, 5), 2);
    EXPECT_EQ(this->written(), "abcd\0ddddd"s);
}

TYPED_TEST(BoundedString, CountedAppendOfTheLargestCountTakesAllThatFits)
{
    for (const std::size_t count : {SIZE_MAX, SIZE_MAX - 1, SIZE_MAX - 2, SIZE_MAX - 3}) {
        EXPECT_EQ(TypeParam::appendCounted(this->destination("ab\0"s), this->text("cd"), count, 4),
                  1);
        EXPECT_EQ(this->written(), "abc\0dddddd"s);
    }
}

TYPED_TEST(BoundedString, CountedAppendLeavesADestinationWithoutTerminatorAlone)
{
    EXPECT_EQ(TypeParam::appendCounted(this->destination("abcd\0"s), this->text("e"), 1, 4), 0);
    EXPECT_EQ(this->written(), "abcd\0ddddd"s);
}

TYPED_TEST(BoundedString, CountedAppendNeedsASourceAndASize)
{
    EXPECT_EQ(TypeParam::appendCounted(this->destination("\0"s), nullptr, 3, 10), 0);
    EXPECT_EQ(TypeParam::appendCounted(this->destination("\0"s), this->text("abc"), 3, 0), 0);
    EXPECT_EQ(this->written(), "\0ddddddddd"s);
}

TYPED_TEST(BoundedString, VerifyFindsTheFirstTerminator)
{
    std::size_t length = 12345;
    EXPECT_EQ(TypeParam::verify(this->destination("abc\0e\0"s), 10, &length), 0);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(TypeParam::verify(this->destination("abc\0"s), 4, nullptr), 0);
}

TYPED_TEST(BoundedString, VerifyMissesATerminatorBehindTheSize)
{
    std::size_t length = 12345;
    EXPECT_EQ(TypeParam::verify(this->destination("abc\0"s), 3, &length), -1);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(TypeParam::verify(this->destination("abc\0"s), 3, nullptr), -1);
}

TYPED_TEST(BoundedString, VerifyFailsWithoutABufferOrASize)
{
    std::size_t length = 12345;
    EXPECT_EQ(TypeParam::verify(nullptr, 10, &length), -1);
    EXPECT_EQ(length, 0);
    length = 12345;
    EXPECT_EQ(TypeParam::verify(this->destination("\0"s), 0, &length), -1);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(TypeParam::verify(nullptr, 10, nullptr), -1);
}

TYPED_TEST(BoundedString, TheLargestSizeIsASizeLikeAnyOther)
{
    std::size_t length = 12345;
    EXPECT_EQ(TypeParam::copy(this->destination(""), this->text("abc"), SIZE_MAX), 3);
    EXPECT_EQ(TypeParam::append(this->destination("a\0"s), this->text("bc"), SIZE_MAX), 2);
    EXPECT_EQ(TypeParam::copyPadded(this->destination(""), this->text("a"), 2, SIZE_MAX), 2);
    EXPECT_EQ(this->written(), "a\0\0ddddddd"s);
    EXPECT_EQ(TypeParam::appendCounted(this->destination("a\0"s), this->text("bc"), 1, SIZE_MAX),
              1);
    EXPECT_EQ(this->written(), "ab\0ddddddd"s);
    EXPECT_EQ(TypeParam::verify(this->destination("abc\0"s), SIZE_MAX, &length), 0);
    EXPECT_EQ(length, 3);
}

TYPED_TEST(BoundedString, ErrnoStaysAsItIs)
{
    errno = 4711;
    TypeParam::copy(this->destination(""), this->text("abc"), 2);
    TypeParam::copy(nullptr, nullptr, 0);
    TypeParam::append(this->destination("a\0"s), this->text("abc"), 3);
    TypeParam::append(this->destination("abc"), this->text("abc"), 3);
    TypeParam::copyPadded(this->destination(""), this->text("abc"), 5, 3);
    TypeParam::appendCounted(this->destination("a\0"s), this->text("abc"), 5, 3);
    TypeParam::verify(this->destination("abc"), 3, nullptr);
    EXPECT_EQ(errno, 4711);
}

} // namespace

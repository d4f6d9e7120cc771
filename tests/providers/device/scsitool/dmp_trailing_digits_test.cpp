#include "providers/device/scsitool/dmp_trailing_digits.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "tests/support/allocation_operators.h"

namespace {

/// Each block of memory has digits in front of it, and so has each long string.
constexpr std::size_t digitsInFront = 64;

} // namespace

void* operator new(std::size_t size)
{
    auto* block = static_cast<char*>(std::malloc(digitsInFront + size));
    if (block == nullptr)
        throw std::bad_alloc();
    std::memset(block, '7', digitsInFront);
    return block + digitsInFront;
}

[[gnu::noinline]] void
operator delete(void* block) noexcept // if inlined, the compiler would warn of a mismatch
{
    if (block != nullptr)
        std::free(static_cast<char*>(block) - digitsInFront);
}

namespace {

/// A locale that is not installed leaves the one before in place.
void useLocale(const char* name)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread.
    static_cast<void>(std::setlocale(LC_ALL, name));
}

TEST(TrailingDigits, OnlyTheTenAsciiDigitsAreDigitsInAnyLocale)
{
    for (const char* locale : {"C", "C.UTF-8", "ar_SA.UTF-8", "fa_IR.UTF-8", "th_TH.TIS-620"}) {
        SCOPED_TRACE(locale);
        useLocale(locale);
        for (int byte = 0; byte < 256; ++byte) {
            const bool expected = byte >= 0x30 && byte <= 0x39;
            EXPECT_EQ(isDigit(static_cast<char>(byte)), expected) << byte;
        }
    }
    useLocale("C");
}

TEST(TrailingDigits, BeginBehindTheLastCharacterThatIsNone)
{
    EXPECT_EQ(trailingDigits(""), 0U);
    EXPECT_EQ(trailingDigits("a"), 1U);
    EXPECT_EQ(trailingDigits("7"), 0U);
    EXPECT_EQ(trailingDigits("123"), 0U);
    EXPECT_EQ(trailingDigits("a123"), 1U);
    EXPECT_EQ(trailingDigits("a1b23"), 3U);
    EXPECT_EQ(trailingDigits("123a"), 4U);
    EXPECT_EQ(trailingDigits(std::string("1\0002", 3)), 2U);
}

TEST(TrailingDigits, OfAnAllDigitNameBeginWithItHoweverLongItIs)
{
    ASSERT_EQ(*(std::string(16, '1').data() - 1), '7');
    for (std::size_t length = 0; length < 100; ++length) {
        const std::string name(length, '1');
        EXPECT_EQ(trailingDigits(name), 0U) << length;
    }
}

TEST(TrailingDigits, SpellTheLow32BitsOfALongThatSaturates)
{
    EXPECT_EQ(numberAt("sda12", 3), 12U);
    EXPECT_EQ(numberAt("sda012", 3), 12U);
    EXPECT_EQ(numberAt("sda", 3), 0U);
    EXPECT_EQ(numberAt("sda0", 3), 0U);
    EXPECT_EQ(numberAt("sda" + std::string(100, '0'), 3), 0U);
    EXPECT_EQ(numberAt("sda" + std::string(100, '0') + "9223372036854775806", 3), 4294967294U);
    EXPECT_EQ(numberAt("4294967295", 0), 4294967295U);
    EXPECT_EQ(numberAt("4294967296", 0), 0U);
    EXPECT_EQ(numberAt("9223372036854775806", 0), 4294967294U);
    EXPECT_EQ(numberAt("9223372036854775807", 0), 4294967295U);
    EXPECT_EQ(numberAt("9223372036854775808", 0), 4294967295U);
    EXPECT_EQ(numberAt("10000000000000000000", 0), 4294967295U);
    EXPECT_EQ(numberAt("99999999999999999999", 0), 4294967295U);
}

TEST(TrailingDigits, ASaturatedNumberLeavesTheHostsErrnoAlone)
{
    for (const char* digits : {"9223372036854775808", "99999999999999999999"}) {
        errno = EXDEV;
        EXPECT_EQ(numberAt(digits, 0), 4294967295U);
        EXPECT_EQ(errno, EXDEV);
    }
}

} // namespace

#include "pdk/include/czeprintable.h"

#include <gtest/gtest.h>

#include "tests/support/harmless_text.h"

using koze_pdk_4_4::appendEscaped;
using koze_pdk_4_4::isControlCharacter;

namespace {

std::string utf8(char32_t character)
{
    const auto next = [&](unsigned int shift) {
        return static_cast<char>(0x80U | (character >> shift & 0x3fU));
    };
    const auto lead = [&](unsigned int mark, unsigned int shift) {
        return static_cast<char>(mark | character >> shift);
    };
    if (character < 0x80)
        return {lead(0, 0)};
    if (character < 0x800)
        return {lead(0xc0, 6), next(0)};
    if (character < 0x10000)
        return {lead(0xe0, 12), next(6), next(0)};
    return {lead(0xf0, 18), next(12), next(6), next(0)};
}

TEST(ControlCharacter, IsOneThatSteersEndsALineHidesOrReorders)
{
    for (const unsigned int character :
         {0x0U,    0x9U,    0xaU,    0x1bU,   0x7fU,   0x80U,    0x9bU,
          0x9fU,   0xadU,   0x61cU,  0x200bU, 0x200fU, 0x2028U,  0x2029U,
          0x202aU, 0x202eU, 0x2066U, 0x2069U, 0xfeffU, 0xe0001U, 0xe007fU})
        EXPECT_TRUE(isControlCharacter(character)) << character;
}

TEST(ControlCharacter, IsNoneOfOrdinaryText)
{
    for (const char32_t character :
         std::u32string(U" ~aZ\u00a0\u00e4\u0301\u6f22\u2010\u2027\U0001f4be"))
        EXPECT_FALSE(isControlCharacter(character)) << std::uint32_t{character};
}

TEST(ControlCharacter, IsTheSameAsInTheListOfEncodings)
{
    for (char32_t character = 0; character <= 0x10ffff; ++character)
        ASSERT_EQ(isControlCharacter(character), isControl(utf8(character)))
            << std::uint32_t{character};
}

TEST(Escaped, BytesAreTwoDigitsEach)
{
    std::string text = "a";
    appendEscaped(text, "");
    EXPECT_EQ(text, "a");
    appendEscaped(text, std::string_view("\0\n\x9b\xff", 4));
    EXPECT_EQ(text, "a\\x00\\x0a\\x9b\\xff");
}

} // namespace

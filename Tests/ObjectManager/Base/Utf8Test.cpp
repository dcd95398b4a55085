#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "ObjectManager/Base/Utf8.h"
#include "Platform/Util/TSKString.h"

namespace {

using Base::decodeCodePoint;

struct Character {
    char32_t code;
    std::string_view bytes;
};

// The first and the last one of each length, and those around the surrogates.
constexpr Character kCharacters[] = {
    {0x01, "\x01"},
    {0x7F, "\x7F"},
    {0x80, "\xC2\x80"},
    {0x7FF, "\xDF\xBF"},
    {0x800, "\xE0\xA0\x80"},
    {0xD7FF, "\xED\x9F\xBF"},
    {0xE000, "\xEE\x80\x80"},
    {0xFFFF, "\xEF\xBF\xBF"},
    {0x10000, "\xF0\x90\x80\x80"},
    {0x10FFFF, "\xF4\x8F\xBF\xBF"},
};

constexpr std::string_view kMalformed[] = {
    "\x80",  // continuation without a beginning
    "\xFC",
    "\xFF",  // begin nothing
    "\xC3",
    "\xE2\x82",  // cut off
    "\xF0\x9F\x98",
    "\xC3x",
    "\xE2\x82x",
    "\xF0\x9F\x98x",  // not continued
    "\xC0\x80",
    "\xC1\xBF",
    "\xE0\x9F\xBF",  // longer than needed
    "\xF0\x8F\xBF\xBF",
    "\xED\xA0\x80",
    "\xED\xBF\xBF",  // and surrogates
    "\xF4\x90\x80\x80",
    "\xF5\x80\x80\x80",  // beyond U+10FFFF
};

TEST(Utf8, DecodesCharactersOfEveryLength) {
    for (const auto& [code, bytes] : kCharacters) {
        const std::string text = "ab" + std::string(bytes) + "c";
        const Base::CodePoint decoded = decodeCodePoint(text, 2);
        EXPECT_EQ(decoded.code, code);
        EXPECT_EQ(decoded.length, bytes.size()) << std::uint32_t{code};
    }
    EXPECT_EQ(decodeCodePoint(std::string_view("\0", 1)).length, 1U);
}

TEST(Utf8, DecodesNothingWhereNoCharacterStands) {
    for (const std::string_view bytes : kMalformed)
        EXPECT_EQ(decodeCodePoint(bytes).length, 0U) << testing::PrintToString(bytes);
    EXPECT_EQ(decodeCodePoint("").length, 0U);
    EXPECT_EQ(decodeCodePoint("a", 1).length, 0U);
}

TEST(Utf8, AppendsCharactersOfEveryLength) {
    for (const auto& [code, bytes] : kCharacters) {
        std::string text = "a";
        Base::appendCodePoint(text, code);
        EXPECT_EQ(text, "a" + std::string(bytes));
        TSKString platformText;
        Base::appendCodePoint(platformText, code);
        EXPECT_EQ(std::string_view(platformText), bytes);
    }
}

// The check steps over eight bytes of ASCII at a time.
TEST(Utf8, ATextIsValidWhenAllOfItIs) {
    EXPECT_TRUE(Base::isUtf8(""));
    for (std::size_t before = 0; before < 18; ++before) {
        for (const Character& character : kCharacters) {
            const std::string text = std::string(before, 'a') + std::string(character.bytes);
            EXPECT_TRUE(Base::isUtf8(text)) << before;
            EXPECT_TRUE(Base::isUtf8(text + std::string(17, 'a'))) << before;
        }
        for (const std::string_view bytes : kMalformed) {
            const std::string text = std::string(before, 'a') + std::string(bytes);
            EXPECT_FALSE(Base::isUtf8(text)) << before;
            EXPECT_FALSE(Base::isUtf8(text + std::string(17, 'a'))) << before;
        }
    }
}

TEST(Utf8, CountsCharacters) {
    EXPECT_EQ(Base::countCharacters(""), 0U);
    EXPECT_EQ(Base::countCharacters("aü€😀"), 4U);
}

TEST(Utf8, FindsTheStartOfTheCharacterAtAByte) {
    const std::string_view text = "a€b";
    constexpr std::size_t kStarts[] = {0, 1, 1, 1, 4, 5, 5};
    for (std::size_t position = 0; position < std::size(kStarts); ++position)
        EXPECT_EQ(Base::startOfCharacter(text, position), kStarts[position]) << position;
    EXPECT_EQ(Base::startOfCharacter("\x80\x80", 1), 0U);
}

TEST(Utf8, KnowsControlCodesAndSurrogates) {
    for (const char32_t code : {0x00U, 0x1FU, 0x7FU, 0x80U, 0x9FU})
        EXPECT_TRUE(Base::isControlCode(code)) << std::uint32_t{code};
    for (const char32_t code : {0x20U, 0x7EU, 0xA0U, 0x109FU})
        EXPECT_FALSE(Base::isControlCode(code)) << std::uint32_t{code};
    for (const char32_t code : {0xD7FFU, 0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0xE000U}) {
        EXPECT_EQ(Base::isHighSurrogate(code), code == 0xD800 || code == 0xDBFF);
        EXPECT_EQ(Base::isLowSurrogate(code), code == 0xDC00 || code == 0xDFFF);
    }
}

}  // namespace

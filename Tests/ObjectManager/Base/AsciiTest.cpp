#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Base/Ascii.h"

namespace {

using namespace std::string_literals;

// All bytes that `isOne` holds for, in their order.
template <typename IsOne>
std::string bytesThat(const IsOne& isOne) {
    std::string bytes;
    for (int code = 0; code < 256; ++code) {
        if (isOne(static_cast<char>(code)))
            bytes += static_cast<char>(code);
    }
    return bytes;
}

std::string range(unsigned char first, unsigned char last) {
    std::string bytes;
    for (int code = first; code <= last; ++code)
        bytes += static_cast<char>(code);
    return bytes;
}

TEST(Ascii, ClassesHoldTheirBytesAndNoOthers) {
    EXPECT_EQ(bytesThat(Base::isDigit), "0123456789");
    EXPECT_EQ(bytesThat(Base::isLetter), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(bytesThat(Base::isSpaceOrTab), "\t ");
    EXPECT_EQ(bytesThat(Base::isLineEnd), "\n\r");
    EXPECT_EQ(bytesThat(Base::isSpace), "\t\n\r ");
    EXPECT_EQ(bytesThat(Base::isControl), range(0, 0x1F) + "\x7F");
    EXPECT_EQ(bytesThat(Base::isPrintable), range(0x20, 0x7E));
}

TEST(Ascii, LowerCaseChangesLettersOfAsciiOnly) {
    EXPECT_EQ(Base::lowerCase('Q'), 'q');
    EXPECT_EQ(Base::lowerCase("@AZ[`az{\xC3\x9C\0Z"s), "@az[`az{\xC3\x9C\0z"s);
    EXPECT_EQ(Base::lowerCase(""), "");
}

TEST(Ascii, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(Base::equalsIgnoringCase("", ""));
    EXPECT_TRUE(Base::equalsIgnoringCase("CIM_aZ", "cim_Az"));
    EXPECT_FALSE(Base::equalsIgnoringCase("a", "ab"));
    EXPECT_FALSE(Base::equalsIgnoringCase("[", "{"));
    EXPECT_FALSE(Base::equalsIgnoringCase("\xC3\x9C", "\xC3\xBC"));
}

TEST(Ascii, ComparesTheStart) {
    EXPECT_TRUE(Base::startsWithIgnoringCase("Basic abc", "bASIC"));
    EXPECT_TRUE(Base::startsWithIgnoringCase("abc", "ABC"));
    EXPECT_TRUE(Base::startsWithIgnoringCase("abc", ""));
    EXPECT_FALSE(Base::startsWithIgnoringCase("abc", "abcd"));
    EXPECT_FALSE(Base::startsWithIgnoringCase("abc", "bc"));
}

TEST(Ascii, DropsSpacesAndTabsAround) {
    EXPECT_EQ(Base::trimmed(" \ta \t b\t "), "a \t b");
    EXPECT_EQ(Base::trimmed("\na"), "\na");
    EXPECT_EQ(Base::trimmed(" \t "), "");
    EXPECT_EQ(Base::trimmed(""), "");
}

}  // namespace

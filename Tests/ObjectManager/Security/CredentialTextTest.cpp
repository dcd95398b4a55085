#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Security/CredentialText.h"

namespace {

using Security::faultOfPassword;
using Security::faultOfUserName;
using Security::isCredentialText;

TEST(CredentialText, TakesUtf8OfEveryLength) {
    EXPECT_TRUE(isCredentialText(""));
    EXPECT_TRUE(isCredentialText(" ~"));
    EXPECT_TRUE(isCredentialText("\xC2\xA0\xDF\xBF"));                  // U+00A0, U+07FF
    EXPECT_TRUE(isCredentialText("\xE0\xA0\x80\xEF\xBF\xBF"));          // U+0800, U+FFFF
    EXPECT_TRUE(isCredentialText("\xED\x9F\xBF\xEE\x80\x80"));          // U+D7FF, U+E000
    EXPECT_TRUE(isCredentialText("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));  // U+10000, U+10FFFF
}

TEST(CredentialText, RefusesControlCharacters) {
    for (int code = 0; code < 0x20; ++code)
        EXPECT_FALSE(isCredentialText(std::string(1, static_cast<char>(code)))) << code;
    EXPECT_FALSE(isCredentialText("a\x7F"));
    EXPECT_FALSE(isCredentialText("\xC2\x80"));
    EXPECT_FALSE(isCredentialText("\xC2\x9F"));
}

TEST(CredentialText, RefusesWhatIsNoUtf8) {
    EXPECT_FALSE(isCredentialText("\x80"));  // continuation without a beginning
    EXPECT_FALSE(isCredentialText("\xFC"));  // Latin-1
    EXPECT_FALSE(isCredentialText("\xFF"));
    EXPECT_FALSE(isCredentialText("\xC3"));  // cut off
    EXPECT_FALSE(isCredentialText("\xE2\x82"));
    EXPECT_FALSE(isCredentialText("\xF0\x9F\x98"));
    EXPECT_FALSE(isCredentialText("\xC3x"));  // not continued
    EXPECT_FALSE(isCredentialText("\xE2\x82x"));
    EXPECT_FALSE(isCredentialText("\xC1\xBF"));  // longer than needed
    EXPECT_FALSE(isCredentialText("\xE0\x9F\xBF"));
    EXPECT_FALSE(isCredentialText("\xF0\x8F\xBF\xBF"));
    EXPECT_FALSE(isCredentialText("\xED\xA0\x80"));  // surrogates
    EXPECT_FALSE(isCredentialText("\xED\xBF\xBF"));
    EXPECT_FALSE(isCredentialText("\xF4\x90\x80\x80"));  // beyond U+10FFFF
    EXPECT_FALSE(isCredentialText("\xF5\x80\x80\x80"));
}

TEST(CredentialText, NamesHaveUpTo255Bytes) {
    EXPECT_EQ(faultOfUserName(""), "it is empty");
    EXPECT_EQ(faultOfUserName("a"), "");
    EXPECT_EQ(faultOfUserName(std::string(255, 'a')), "");
    EXPECT_EQ(faultOfUserName(std::string(256, 'a')), "it is longer than 255 bytes");
}

TEST(CredentialText, NamesHaveNoColonsAndDoNotLookLikeComments) {
    EXPECT_EQ(faultOfUserName("a:"), "it contains a colon");
    EXPECT_EQ(faultOfUserName("#a"), "it begins with #, as comments do");
    EXPECT_EQ(faultOfUserName("a#"), "");
    EXPECT_EQ(faultOfUserName("J\xC3\xBCrgen M."), "");
    EXPECT_EQ(faultOfUserName("a\n"), "it contains control characters or is not UTF-8");
    EXPECT_EQ(faultOfUserName("\xFC"), "it contains control characters or is not UTF-8");
}

TEST(CredentialText, PasswordsHaveUpTo511Bytes) {
    EXPECT_EQ(faultOfPassword(""), "it is empty");
    EXPECT_EQ(faultOfPassword("a"), "");
    EXPECT_EQ(faultOfPassword(std::string(511, 'a')), "");
    EXPECT_EQ(faultOfPassword(std::string(512, 'a')), "it is longer than 511 bytes");
}

TEST(CredentialText, PasswordsHaveColonsButNoControlCharacters) {
    EXPECT_EQ(faultOfPassword("#a:b c"), "");
    EXPECT_EQ(faultOfPassword(std::string_view("a\0b", 3)),
              "it contains control characters or is not UTF-8");
    EXPECT_EQ(faultOfPassword("\xFC"), "it contains control characters or is not UTF-8");
}

}  // namespace

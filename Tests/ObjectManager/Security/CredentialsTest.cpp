#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <string>
#include <string_view>

#include "ObjectManager/Security/Credentials.h"
#include "Tests/ObjectManager/Security/BasicField.h"

namespace {

using Security::validatePassword;
using Security::validateUserName;

constexpr std::string_view kNotText = "it contains control characters or is not UTF-8";

// What is wrong with `text` as a password; user names have the same rule for their bytes.
std::string_view errorInText(std::string_view text) {
    const std::string_view fault = validatePassword(text);
    EXPECT_EQ(validateUserName(text), fault);
    return fault;
}

TEST(Credentials, AreUtf8OfEveryLength) {
    for (const char* const text : {
             " ~",
             "\xC2\xA0\xDF\xBF",                  // U+00A0, U+07FF
             "\xE0\xA0\x80\xEF\xBF\xBF",          // U+0800, U+FFFF
             "\xED\x9F\xBF\xEE\x80\x80",          // U+D7FF, U+E000
             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",  // U+10000, U+10FFFF
         })
        EXPECT_EQ(errorInText(text), "") << text;
}

TEST(Credentials, HaveNoControlCharacters) {
    for (int code = 0; code < 0x20; ++code)
        EXPECT_EQ(errorInText(std::string(1, static_cast<char>(code))), kNotText) << code;
    for (const char* const text : {"a\x7F", "\xC2\x80", "\xC2\x9F"})
        EXPECT_EQ(errorInText(text), kNotText) << text;
    EXPECT_EQ(errorInText(std::string_view("a\0b", 3)), kNotText);
}

TEST(Credentials, AreNothingButUtf8) {
    for (const char* const text : {
             "\x80",              // continuation without a beginning
             "\xFC",              // Latin-1
             "\xC3",              // cut off
             "\xC3x",             // not continued
             "\xE0\x9F\xBF",      // overlong
             "\xED\xA0\x80",      // a surrogate
             "\xF4\x90\x80\x80",  // beyond U+10FFFF
         })
        EXPECT_EQ(errorInText(text), kNotText) << text;
}

TEST(Credentials, UserNamesHaveUpTo255Bytes) {
    EXPECT_EQ(validateUserName(""), "it is empty");
    EXPECT_EQ(validateUserName("a"), "");
    EXPECT_EQ(validateUserName(std::string(255, 'a')), "");
    EXPECT_EQ(validateUserName(std::string(256, 'a')), "it is longer than 255 bytes");
}

TEST(Credentials, UserNamesHaveNoColonsAndDoNotLookLikeComments) {
    EXPECT_EQ(validateUserName("a:"), "it contains a colon");
    EXPECT_EQ(validateUserName("#a"), "it begins with #, as comments do");
    EXPECT_EQ(validateUserName("a#"), "");
    EXPECT_EQ(validateUserName("J\xC3\xBCrgen M."), "");
}

TEST(Credentials, PasswordsHaveUpTo511Bytes) {
    EXPECT_EQ(validatePassword(""), "it is empty");
    EXPECT_EQ(validatePassword("a"), "");
    EXPECT_EQ(validatePassword(std::string(511, 'a')), "");
    EXPECT_EQ(validatePassword(std::string(512, 'a')), "it is longer than 511 bytes");
    EXPECT_EQ(validatePassword("#a:b c"), "");
}

// "USER|PASSWORD" of a field; "refused" when it has none.
std::string parsed(std::string_view field) {
    const auto credentials = Security::parseBasicCredentials(field);
    return credentials ? credentials->user + "|" + std::string(credentials->password.view())
                       : "refused";
}

TEST(BasicCredentials, ReadsTheExamplesOfItsDefinition) {
    // RFC 7617, sections 2 and 2.1.
    EXPECT_EQ(parsed("Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ=="), "Aladdin|open sesame");
    EXPECT_EQ(parsed("Basic dGVzdDoxMjPCow=="), "test|123\xC2\xA3");
}

TEST(BasicCredentials, TheSchemeIsReadInAnyCase) {
    EXPECT_EQ(parsed("basic YTpi"), "a|b");
    EXPECT_EQ(parsed("BASIC YTpi"), "a|b");
    EXPECT_EQ(parsed("bAsIc YTpi"), "a|b");
}

TEST(BasicCredentials, SeveralSpacesMayFollowTheScheme) {
    EXPECT_EQ(parsed("Basic   YTpi"), "a|b");
}

TEST(BasicCredentials, TheFirstColonEndsTheName) {
    EXPECT_EQ(parsed(basicField("a", "b:c")), "a|b:c");
    EXPECT_EQ(parsed(basicField("a", ":")), "a|:");
}

TEST(BasicCredentials, NamesAndPasswordsAreUtf8) {
    EXPECT_EQ(parsed(basicField("J\xC3\xBCrgen", "\xF0\x9F\x94\x91")),
              "J\xC3\xBCrgen|\xF0\x9F\x94\x91");
    EXPECT_EQ(parsed(basicField("J\xFCrgen", "b")), "refused");
    EXPECT_EQ(parsed(basicField("a", "\xA3")), "refused");
}

TEST(BasicCredentials, RefusesOtherSchemes) {
    for (const char* field :
         {"", " ", "Basi", "Basic", "Basic ", "Basics YTpi", "Bearer YTpi", "Digest username=\"a\"",
          "YTpi", "BasicYTpi", " Basic YTpi", "Basic\tYTpi", "Basic,YTpi", "Basik YTpi"})
        EXPECT_EQ(parsed(field), "refused") << field;
}

TEST(BasicCredentials, RefusesWhatIsNotExactlyOneBase64Text) {
    for (const char* field : {"Basic a:b", "Basic YTpi ", "Basic YTpi YTpi", "Basic YTpi,",
                              "Basic YTpi=", "Basic YTp", "Basic YTpiYw", "Basic YTp\r\ni",
                              "Basic YT-_", "Basic realm=\"x\"", "Basic ====", "Basic =="})
        EXPECT_EQ(parsed(field), "refused") << field;
}

TEST(BasicCredentials, RefusesCredentialsWithoutAColon) {
    EXPECT_EQ(parsed("Basic YWI="), "refused");  // ab
}

TEST(BasicCredentials, RefusesWhatCanBeNoNameOrPassword) {
    EXPECT_EQ(parsed(basicField("", "b")), "refused");
    EXPECT_EQ(parsed(basicField("a", "")), "refused");
    EXPECT_EQ(parsed(basicField("#a", "b")), "refused");
    EXPECT_EQ(parsed(basicField("a\n", "b")), "refused");
    EXPECT_EQ(parsed(basicField("a", "b\n")), "refused");
    EXPECT_EQ(parsed(basicField("a", std::string_view("b\0c", 3))), "refused");
}

TEST(BasicCredentials, NamesAndPasswordsHaveTheirLongestLengths) {
    const std::string name(255, 'n');
    const std::string password(511, 'p');
    EXPECT_EQ(parsed(basicField(name, password)), name + "|" + password);
    EXPECT_EQ(parsed(basicField(name + "n", "p")), "refused");
    EXPECT_EQ(parsed(basicField("n", password + "p")), "refused");
    EXPECT_EQ(parsed(basicField(name, password + "p")), "refused");
    EXPECT_EQ(parsed(basicField("n", std::string(1'000'000, 'p'))), "refused");
}

TEST(BasicCredentials, RefusesAFieldThatIsCutAnywhere) {
    const std::string field = "Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ==";
    // Whole groups of four characters that hold the colon and a byte behind it are credentials.
    for (std::size_t length = 0; length < field.size(); ++length) {
        const bool isWhole = length >= 6 + 12 && (length - 6) % 4 == 0;
        EXPECT_EQ(parsed(field.substr(0, length)) != "refused", isWhole) << length;
    }
}

// The decoded bytes; "refused" for a text that is no base64.
std::string decoded(std::string_view text) {
    const auto bytes = Security::decodeBase64(text);
    return bytes ? std::string(bytes->view()) : "refused";
}

// The test vectors of RFC 4648, section 10.
TEST(Base64, DecodesTheVectorsOfItsDefinition) {
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded("Zg=="), "f");
    EXPECT_EQ(decoded("Zm8="), "fo");
    EXPECT_EQ(decoded("Zm9v"), "foo");
    EXPECT_EQ(decoded("Zm9vYg=="), "foob");
    EXPECT_EQ(decoded("Zm9vYmE="), "fooba");
    EXPECT_EQ(decoded("Zm9vYmFy"), "foobar");
}

TEST(Base64, DecodesEveryByteAtEveryPlace) {
    for (std::size_t length = 1; length <= 6; ++length) {
        for (int code = 0; code < 256; ++code) {
            const std::string bytes(length, static_cast<char>(code));
            std::string text(4 * ((length + 2) / 3) + 1, '\0');
            EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                            reinterpret_cast<const unsigned char*>(bytes.data()),
                            static_cast<int>(length));
            text.pop_back();
            EXPECT_EQ(decoded(text), bytes) << text;
        }
    }
}

TEST(Base64, RefusesMissingAndSuperfluousPadding) {
    for (const char* text : {"Z", "Zg", "Zg=", "Zg===", "Zm8", "Zm8==", "Zm9v=", "Zm9v==",
                             "Zm9v====", "=", "==", "===", "====", "Z===", "Zg==Zg==", "Z=g="})
        EXPECT_EQ(decoded(text), "refused") << text;
}

TEST(Base64, RefusesBitsThatBelongToNoByte) {
    EXPECT_EQ(decoded("Zh=="), "refused");
    EXPECT_EQ(decoded("Zm9="), "refused");
}

TEST(Base64, RefusesEverythingOutsideItsAlphabet) {
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        const bool isInAlphabet = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                                  (code >= 'a' && code <= 'z') || code == '+' || code == '/';
        const std::string text = {'A', 'A', character, 'A'};
        EXPECT_EQ(decoded(text) != "refused", isInAlphabet) << code;
    }
}

}  // namespace

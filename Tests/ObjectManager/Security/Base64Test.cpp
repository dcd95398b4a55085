#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <string>

#include "ObjectManager/Security/Base64.h"

namespace {

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

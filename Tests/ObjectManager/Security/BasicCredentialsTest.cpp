#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Security/BasicCredentials.h"
#include "Tests/ObjectManager/Security/BasicField.h"

namespace {

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

TEST(BasicCredentials, SeveralBlanksMayFollowTheScheme) {
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

}  // namespace

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Host/PublishedAddress.h"

namespace {

// The document with the insertion, or the word "none".
std::string published(std::string document) {
    const auto insertion = Host::findHttpsInsertion(document);
    if (!insertion)
        return "none";
    return document.insert(*insertion, Host::kHttpsInsertion);
}

const std::string kEnd = "\n</wsdl:definitions>\n";

TEST(HttpsInsertion, TheAddressOfAWsdlDocumentBecomesOneOfHttps) {
    EXPECT_EQ(
        published("<x a=\"http://b/\"/><soap:address location=\"http://a:5986/wsman\"/>" + kEnd),
        "<x a=\"http://b/\"/><soap:address location=\"https://a:5986/wsman\"/>" + kEnd);
}

TEST(HttpsInsertion, TextBeforeTheAddressIsLeftAlone) {
    const std::string text = "<d><soap:address location=\"http://a/\"/></d>";
    EXPECT_EQ(published(text + "<soap:address location=\"http://a/\"/>" + kEnd),
              text + "<soap:address location=\"https://a/\"/>" + kEnd);
}

TEST(HttpsInsertion, OtherDocumentsHaveNone) {
    EXPECT_EQ(published(""), "none");
    EXPECT_EQ(published(kEnd), "none");
    EXPECT_EQ(published("<soap:address location=\"http://a/\"/></xs:schema>\n"), "none");
    EXPECT_EQ(published("<soap:address location=\"https://a/\"/>" + kEnd), "none");
    EXPECT_EQ(published("<soap:address location=\"httpx://a/\"/>" + kEnd), "none");
}

}  // namespace

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Configuration/NamespaceOption.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Configuration::isSameNamespace;
using Configuration::parseNamespaceName;
using Configuration::parseNamespaceOption;

// What `parse` says against a text.
template <typename Parse>
std::string failureOf(const Parse& parse, std::string_view text) {
    try {
        static_cast<void>(parse(text));
        return "no failure";
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

TEST(NamespaceName, LosesTheSlashesAtItsEnds) {
    EXPECT_EQ(parseNamespaceName("root/cimv2"), "root/cimv2");
    EXPECT_EQ(parseNamespaceName("/root/cimv2/"), "root/cimv2");
    EXPECT_EQ(parseNamespaceName("//interop//"), "interop");
    EXPECT_EQ(parseNamespaceName("a"), "a");
    EXPECT_EQ(parseNamespaceName("Root/PG_1.2-x/.a/..."), "Root/PG_1.2-x/.a/...");
}

TEST(NamespaceName, EverythingElseIsRefused) {
    for (const char* text :
         {"",    "/",    "//",    "a//b", "a/./b",       "a/..",    ".", "..", "a b", " a",
          "a:b", "a\\b", "a%2Fb", "a\n",  "r\xC3\xB6ot", "a/b c/d", "@", "[",  "`",   "{"}) {
        EXPECT_EQ(failureOf(&parseNamespaceName, text),
                  "\"" + std::string(text) +
                      "\" is no name of a namespace, such as \"root/cimv2\": letters, digits, "
                      "\"_\", \"-\" and \".\", in parts with a \"/\" between them");
    }
}

TEST(NamespaceName, LetterCaseDoesNotCount) {
    EXPECT_TRUE(isSameNamespace("root/CIMv2", "ROOT/cimV2"));
    EXPECT_FALSE(isSameNamespace("root/cimv2", "root/cimv"));
    EXPECT_FALSE(isSameNamespace("root/cimv2", "root/cimv3"));
    EXPECT_FALSE(isSameNamespace("a@b", "a`b"));
}

TEST(NamespaceOption, HasANameAndAPath) {
    EXPECT_EQ(parseNamespaceOption("root/cimv2=schema/cim.mof"),
              (Repository::NamespaceSource{.name = "root/cimv2", .paths = {"schema/cim.mof"}}));
    EXPECT_EQ(parseNamespaceOption("/a/=/b/c=d "),
              (Repository::NamespaceSource{.name = "a", .paths = {"/b/c=d "}}));
}

TEST(NamespaceOption, EverythingElseIsRefused) {
    for (const char* text : {"", "root", "root=", "schema/cim.mof"}) {
        EXPECT_EQ(failureOf(&parseNamespaceOption, text),
                  "\"" + std::string(text) +
                      "\" is no namespace with a MOF file or folder, such as "
                      "\"root/cimv2=schema/cim.mof\"");
    }
    EXPECT_EQ(failureOf(&parseNamespaceOption, "=cim.mof"), failureOf(&parseNamespaceName, ""));
    EXPECT_EQ(failureOf(&parseNamespaceOption, "a b=cim.mof"),
              failureOf(&parseNamespaceName, "a b"));
}

}  // namespace

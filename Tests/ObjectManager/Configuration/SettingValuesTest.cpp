#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Configuration/SettingValues.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Configuration::parseAdminAddress;
using Configuration::parseListenAddress;
using Configuration::parseNamespaceName;
using Configuration::parseNamespaceOption;
using Configuration::parsePublishedAddress;
using Http::ListenAddress;

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

TEST(ListenAddress, HasAnAddressAndAPort) {
    EXPECT_EQ(parseListenAddress("127.0.0.1:5985"),
              (ListenAddress{.address = "127.0.0.1", .port = 5985}));
    EXPECT_EQ(parseListenAddress("0.0.0.0:0"), (ListenAddress{.address = "0.0.0.0", .port = 0}));
    EXPECT_EQ(parseListenAddress("[::1]:65535"), (ListenAddress{.address = "::1", .port = 65535}));
    EXPECT_EQ(parseListenAddress("[::]:1"), (ListenAddress{.address = "::", .port = 1}));
}

TEST(ListenAddress, EverythingElseIsRefused) {
    for (const char* text : {"",
                             ":",
                             "5985",
                             ":5985",
                             "127.0.0.1",
                             "127.0.0.1:",
                             "127.0.0.1:x",
                             "127.0.0.1:5985x",
                             "127.0.0.1:-1",
                             "127.0.0.1:+1",
                             "127.0.0.1: 1",
                             "127.0.0.1:65536",
                             "127.0.0.1:99999999999",
                             "127.0.0:1",
                             "127.0.0.256:1",
                             " 127.0.0.1:1",
                             "localhost:5985",
                             "*:5985",
                             "::1:5985",
                             "[::1]",
                             "[::1]:",
                             "[::1:5985",
                             "::1]:5985",
                             "[127.0.0.1]:5985",
                             "[]:5985",
                             "[:::]:1",
                             "[::1]]:1",
                             "[fe80::1%lo]:1"}) {
        EXPECT_EQ(failureOf(&parseListenAddress, text),
                  "\"" + std::string(text) +
                      "\" is not an address with a port, such as \"127.0.0.1:5985\", "
                      "\"0.0.0.0:5985\" or \"[::1]:5985\"");
    }
    EXPECT_EQ(failureOf(&parseListenAddress, std::string_view("127.0.0.1\0:1", 12)).substr(0, 11),
              "\"127.0.0.1");
}

TEST(AdminAddress, MayBeAPortAlone) {
    EXPECT_EQ(parseAdminAddress("9187"), (ListenAddress{.address = "127.0.0.1", .port = 9187}));
    EXPECT_EQ(parseAdminAddress("[::]:1"), (ListenAddress{.address = "::", .port = 1}));
    for (const char* const text : {"", ":9187", "65536", "9187x", "localhost:1"})
        EXPECT_EQ(failureOf(&parseAdminAddress, text), failureOf(&parseListenAddress, text));
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
                      "\" is not the name of a namespace, such as \"root/cimv2\": letters, digits, "
                      "\"_\", \"-\" and \".\", in parts with a \"/\" between them");
    }
}

TEST(NamespaceOption, HasANameAndAPath) {
    EXPECT_EQ(parseNamespaceOption("root/cimv2=schema/cim.mof"),
              (Loading::NamespaceSource{.name = "root/cimv2", .paths = {"schema/cim.mof"}}));
    EXPECT_EQ(parseNamespaceOption("/a/=/b/c=d "),
              (Loading::NamespaceSource{.name = "a", .paths = {"/b/c=d "}}));
}

TEST(NamespaceOption, EverythingElseIsRefused) {
    for (const char* text : {"", "root", "root=", "schema/cim.mof"}) {
        EXPECT_EQ(failureOf(&parseNamespaceOption, text),
                  "\"" + std::string(text) +
                      "\" is not a namespace with a MOF file or directory, such as "
                      "\"root/cimv2=schema/cim.mof\"");
    }
    EXPECT_EQ(failureOf(&parseNamespaceOption, "=cim.mof"), failureOf(&parseNamespaceName, ""));
    EXPECT_EQ(failureOf(&parseNamespaceOption, "a b=cim.mof"),
              failureOf(&parseNamespaceName, "a b"));
}

TEST(PublishedAddress, HasASchemeAHostAndAnOptionalPort) {
    EXPECT_EQ(parsePublishedAddress("https://cim.example.org:5986"),
              (Host::PublishedAddress{.host = "cim.example.org:5986", .isHttps = true}));
    EXPECT_EQ(parsePublishedAddress("http://cim.example.org/"),
              (Host::PublishedAddress{.host = "cim.example.org"}));
    EXPECT_EQ(parsePublishedAddress("HTTPS://[2001:db8::1]:1"),
              (Host::PublishedAddress{.host = "[2001:db8::1]:1", .isHttps = true}));
}

TEST(PublishedAddress, EverythingElseIsRefused) {
    for (const char* const text :
         {"", "cim.example.org", "cim.example.org:5986", "ftp://a", "http://", "https:///",
          "https://a/b", "https://a//", "https://a:65536", "https://a b", "https://u@a",
          "https://a?b", " https://a"}) {
        EXPECT_EQ(failureOf(&parsePublishedAddress, text),
                  "\"" + std::string(text) +
                      "\" is not the address of a service, such as "
                      "\"https://cim.example.org:5986\"");
    }
}

}  // namespace

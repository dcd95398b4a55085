#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/NamespaceOption.h"

namespace {

using Commands::faultOfNamespaceOption;
using Commands::isNamespaceName;
using Commands::parseNamespaceOption;

std::string badName(const std::string& name) {
    return "\"" + name +
           "\" cannot be the name of a namespace: one is made of letters, digits, _ and -, with "
           "single slashes between them, such as root/cimv2";
}

std::string noPair(const std::string& text) {
    return "\"" + text + "\" is not NAME=PATH, such as root/acme=mof/acme.mof";
}

TEST(NamespaceOption, NamesAreWordsBetweenSlashes) {
    for (const char* const name : {"interop", "root/cimv2", "a/b/c", "Root/PG_Internal-2", "0"})
        EXPECT_TRUE(isNamespaceName(name)) << name;
    for (const char* const name : {"", "/", "/root", "root/", "root//cimv2", "root cimv2", "a.wsdl",
                                   "a?b", "a%2Fb", "a#b", "a:b", "r\xC3\xB6t", "a\n"})
        EXPECT_FALSE(isNamespaceName(name)) << name;
    EXPECT_FALSE(isNamespaceName(std::string_view("a\0b", 3)));
}

TEST(NamespaceOption, HasNoFaultWithANameAndAPath) {
    EXPECT_EQ(faultOfNamespaceOption("root/cimv2=mof/"), "");
    EXPECT_EQ(faultOfNamespaceOption("a=b=c.mof"), "");
}

TEST(NamespaceOption, SaysWhatIsWrong) {
    EXPECT_EQ(faultOfNamespaceOption(""), noPair(""));
    EXPECT_EQ(faultOfNamespaceOption("root/cimv2"), noPair("root/cimv2"));
    EXPECT_EQ(faultOfNamespaceOption("root/cimv2="), noPair("root/cimv2="));
    EXPECT_EQ(faultOfNamespaceOption("=mof/"), badName(""));
    EXPECT_EQ(faultOfNamespaceOption("/root=mof/"), badName("/root"));
}

TEST(NamespaceOption, IsTakenApartAtTheFirstEqualsSign) {
    const NamespaceSource source = parseNamespaceOption("root/cimv2=a=b.mof");
    EXPECT_EQ(source.name, "root/cimv2");
    EXPECT_EQ(source.paths, std::vector<std::string>({"a=b.mof"}));
}

}  // namespace

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlWebProvider.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

// What a path is read as: "NAMESPACE|CLASS", or "refused".
std::string read(const char* path) {
    TSKString cimNS = "untouched";
    std::vector<TSKString> classNames;
    if (!getUserInput(cimNS, classNames, path)) {
        EXPECT_EQ(cimNS, "untouched");
        EXPECT_TRUE(classNames.empty());
        return "refused";
    }
    EXPECT_EQ(classNames.size(), 1U);
    return std::string(cimNS.data()) + "|" + classNames.at(0).data();
}

TEST(RequestPath, NamespaceAndClassStandAroundTheLastSlashInSmallLetters) {
    EXPECT_EQ(read("/root/cimv2/CIM_ComputerSystem.wsdl"), "root/cimv2|cim_computersystem");
    EXPECT_EQ(read("/root/cimv2/CIM_ComputerSystem.xsd"), "root/cimv2|cim_computersystem");
    EXPECT_EQ(read("/Root/CIMv2/CIM_Foo.WSDL"), "root/cimv2|cim_foo");
}

TEST(RequestPath, TheNamespaceMayBeEmpty) {
    EXPECT_EQ(read("/CIM_Foo.wsdl"), "|cim_foo");
    EXPECT_EQ(read("//CIM_Foo.wsdl"), "|cim_foo");
}

TEST(RequestPath, TheClassMayBeEmpty) {
    EXPECT_EQ(read("/root/.wsdl"), "root|");
    EXPECT_EQ(read("/.xsd"), "|");
}

TEST(RequestPath, BlanksAroundNamespaceAndClassAreTrimmed) {
    EXPECT_EQ(read("/ root/cimv2 / CIM_Foo .wsdl"), "root/cimv2|cim_foo");
}

TEST(RequestPath, OnlyBlanksAreTrimmed) {
    EXPECT_EQ(read("/\troot\t/\tCIM_Foo\t.wsdl"), "\troot\t|\tcim_foo\t");
    EXPECT_EQ(read("//root//CIM_Foo.wsdl"), "/root/|cim_foo");
    EXPECT_EQ(read("///CIM_Foo.wsdl"), "/|cim_foo");
}

TEST(RequestPath, OtherEndingsAreRefused) {
    EXPECT_EQ(read("/root/CIM_Foo.html"), "refused");
    EXPECT_EQ(read("/root/CIM_Foo"), "refused");
    EXPECT_EQ(read("/root/CIM_Foo.wsdl/"), "refused");
    EXPECT_EQ(read("/root/CIM_Foo.wsdl "), "refused");
    EXPECT_EQ(read("/"), "refused");
    EXPECT_EQ(read(""), "refused");
}

TEST(RequestPath, APathWithoutASlashIsRefused) {
    EXPECT_EQ(read("CIM_Foo.wsdl"), "refused");
    EXPECT_EQ(read(".xsd"), "refused");
}

TEST(RequestPath, XsdInCapitalsTakesTheClassNameToTheEndOfThePath) {
    EXPECT_EQ(read("/root/cimv2/CIM_Foo.XSD"), "root/cimv2|cim_foo.xsd");
    EXPECT_EQ(read("/root/cimv2/CIM_Foo.Xsd"), "root/cimv2|cim_foo.xsd");
}

TEST(RequestPath, TheFirstExtensionEndsTheClassName) {
    EXPECT_EQ(read("/root/CIM_Foo.wsdl.wsdl"), "root|cim_foo");
    EXPECT_EQ(read("/root/CIM_Foo.xsd.wsdl"), "root|cim_foo.xsd");
}

TEST(RequestPath, AnExtensionBeforeTheLastSlashTakesTheClassNameToTheEndOfThePath) {
    EXPECT_EQ(read("/root.wsdl/CIM_Foo.wsdl"), "root.wsdl|cim_foo.wsdl");
}

TEST(RequestPath, APathThatDoesNotBeginWithASlashLosesItsFirstSegment) {
    EXPECT_EQ(read("root/cimv2/CIM_Foo.wsdl"), "cimv2|cim_foo");
    EXPECT_EQ(read("root/CIM_Foo.wsdl"), "cim_foo.wsdl|cim_foo");
}

TEST(RequestPath, ClassNamesAreAppended) {
    TSKString cimNS;
    std::vector<TSKString> classNames = {"first"};
    EXPECT_TRUE(getUserInput(cimNS, classNames, "/root/Second.wsdl"));
    EXPECT_EQ(classNames, std::vector<TSKString>({"first", "second"}));
}

TEST(RequestPath, IsWsdlUriLooksForTheSegmentInSmallLetters) {
    EXPECT_TRUE(isWsdlUri("/wsdl"));
    EXPECT_TRUE(isWsdlUri("/root/wsdlfiles/CIM_Foo.xsd"));
    EXPECT_FALSE(isWsdlUri("/root/CIM_Foo.wsdl"));
    EXPECT_FALSE(isWsdlUri("/WSDL"));
    EXPECT_FALSE(isWsdlUri(""));
}

std::vector<std::string> tokens(const char* text, const char* separator) {
    std::vector<TSKString> values = {"kept"};
    tokenize(values, text, separator);
    std::vector<std::string> pieces;
    for (const TSKString& value : values)
        pieces.emplace_back(value.data());
    EXPECT_EQ(pieces.at(0), "kept");
    pieces.erase(pieces.begin());
    return pieces;
}

using Tokens = std::vector<std::string>;

TEST(Tokenize, SplitsAtEachSeparatorAndTrimsBlanks) {
    EXPECT_EQ(tokens("a, b ,c", ","), Tokens({"a", "b", "c"}));
    EXPECT_EQ(tokens("one::two::three", "::"), Tokens({"one", "two", "three"}));
}

TEST(Tokenize, LeavesEmptyPiecesOut) {
    EXPECT_EQ(tokens("a,  ,b,", ","), Tokens({"a", "b"}));
    EXPECT_EQ(tokens("   ", ","), Tokens());
    EXPECT_EQ(tokens("", ","), Tokens());
}

TEST(Tokenize, ASeparatorAtTheBeginningEndsTheSplitting) {
    EXPECT_EQ(tokens(",a,b", ","), Tokens({",a,b"}));
    EXPECT_EQ(tokens("a,,b,c ", ","), Tokens({"a", ",b,c"}));
}

TEST(Tokenize, WithoutASeparatorTheTextIsOnePiece) {
    EXPECT_EQ(tokens(" a b ", ","), Tokens({"a b"}));
    EXPECT_EQ(tokens(" a b ", ""), Tokens({"a b"}));
}

TEST(Tokenize, ManyPiecesNeedNoStack) {
    constexpr int kPieces = 100'000;
    std::string text;
    for (int piece = 0; piece < kPieces; ++piece)
        text += "a,";
    EXPECT_EQ(tokens(text.c_str(), ","), Tokens(kPieces, "a"));
}

TEST(OutputFile, CopiesEveryByte) {
    using std::string_literals::operator""s;
    const std::string content = "<?xml?>\r\n\0\xff end"s + std::string(100'000, 'x');
    const TemporaryDirectory directory;
    std::stringstream stream;
    stream << "before ";
    outputFile(directory.write("file", content).c_str(), stream);
    EXPECT_EQ(stream.str(), "before " + content);
}

TEST(OutputFile, AMissingFileCopiesNothing) {
    const TemporaryDirectory directory;
    std::stringstream stream;
    outputFile((directory / "missing").c_str(), stream);
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.fail());
}

}  // namespace

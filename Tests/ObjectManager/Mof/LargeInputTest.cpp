// Files that are made to take long. Reading each takes time in proportion to its length: if it took
// time by the square of that, these tests would run into their time limit.

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Mof/Compiler.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Mof::Compilation;

constexpr std::size_t kMillion = 1'000'000;

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index)
        result += text;
    return result;
}

Compilation compileText(const std::string& mof) {
    const TemporaryDirectory directory;
    return Mof::compile({directory.write("a.mof", mof)});
}

// The one default value of what is declared, as a text.
std::string onlyDefault(const Compilation& compilation) {
    EXPECT_EQ(diagnosticsOf(compilation), "");
    const Mof::Value& value = *compilation.classes.at(0).properties.at(0).defaultValue;
    EXPECT_EQ(value.literals.size(), 1U);
    return std::string(std::string_view(value.literals.front().text));
}

TEST(LargeInput, ManyStringsOnALine) {
    const std::string mof = "class A_B { string s = " + repeated("\"a\"", kMillion) + "; };";
    EXPECT_TRUE(onlyDefault(compileText(mof)) == std::string(kMillion, 'a'));
}

TEST(LargeInput, ManyEscapesInAString) {
    const std::string mof = "class A_B { string s = \"" + repeated("\\\"", 4 * kMillion) + "\"; };";
    EXPECT_TRUE(onlyDefault(compileText(mof)) == std::string(4 * kMillion, '"'));
}

TEST(LargeInput, AStringOfBackslashes) {
    const std::string mof =
        "class A_B { string s = \"" + std::string(8 * kMillion, '\\') + "\"; };";
    EXPECT_TRUE(onlyDefault(compileText(mof)) == std::string(4 * kMillion, '\\'));
}

TEST(LargeInput, ACommentOfZeroBytes) {
    const Compilation compilation = compileText("/*" + std::string(kMillion, '\0') + "*/");
    ASSERT_EQ(compilation.diagnostics.size(), 1U);
    EXPECT_EQ(compilation.diagnostics.front().message,
              "here is a zero byte: the file must be text, in UTF-8");
}

// Each of them keeps a part of the line only.
TEST(LargeInput, ManyFaultsOnALongLine) {
    std::string mof = "class A_B {";
    for (int number = 0; number < 100; ++number)
        mof += "A_" + std::to_string(number) + " ref r" + std::to_string(number) + "; ";
    const Compilation compilation = compileText(mof + std::string(8 * kMillion, ' ') + "};");
    ASSERT_EQ(compilation.diagnostics.size(), 100U);
    EXPECT_LT(diagnosticsOf(compilation).size(), 100'000U);
}

TEST(LargeInput, ManyFaultsOfLongNames) {
    const std::string property = "uint8 " + std::string(kMillion, 'a') + ";\n";
    const Compilation compilation = compileText("class A_B {\n" + repeated(property, 10) + "};");
    ASSERT_EQ(compilation.diagnostics.size(), 9U);
    EXPECT_LT(diagnosticsOf(compilation).size(), 100'000U);
}

}  // namespace

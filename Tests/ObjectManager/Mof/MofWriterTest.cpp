#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/MofWriter.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/MofDirectory.h"

namespace {

using namespace Mof;

std::string mofOf(const Compilation& compilation) {
    std::string mof;
    for (const QualifierDeclaration& declaration : compilation.qualifiers)
        mof += mofOf(declaration);
    for (const ClassDeclaration& declaration : compilation.classes)
        mof += mofOf(declaration);
    return mof;
}

Compilation compiled(std::string_view mof) {
    const MofDirectory directory;
    return compile({directory.write("a.mof", mof)});
}

// Expects that what is written of a compilation declares what it declares, to the letter.
void expectSameWhenCompiledAgain(const Compilation& compilation) {
    const Compilation again = compiled(mofOf(compilation));
    EXPECT_EQ(diagnosticsOf(again), diagnosticsOf(compilation));
    EXPECT_TRUE(textOf(again) == textOf(compilation));
    ASSERT_EQ(again.classes.size(), compilation.classes.size());
    for (std::size_t index = 0; index < again.classes.size(); ++index)
        EXPECT_TRUE(isSame(again.classes[index], compilation.classes[index]));
    ASSERT_EQ(again.qualifiers.size(), compilation.qualifiers.size());
    for (std::size_t index = 0; index < again.qualifiers.size(); ++index)
        EXPECT_TRUE(isSame(again.qualifiers[index], compilation.qualifiers[index]));
}

// As it is written.
constexpr const char* kEveryForm = R"(Qualifier Association : boolean = false,
    Scope (association),
    Flavor (DisableOverride, ToSubclass);
Qualifier Description : string = NULL,
    Scope (any),
    Flavor (EnableOverride, Translatable);
Qualifier Embedded : string,
    Scope (property, reference, method, parameter);
Qualifier Indication : boolean = false,
    Scope (class, indication);
Qualifier Level : uint8[3] = {1, 2, 3},
    Scope (qualifier),
    Flavor (Restricted);
Qualifier Mark : char16 = '\'',
    Scope (any);
Qualifier Ratio : real64 = -1.5e-07,
    Scope (any);
Qualifier Values : string[],
    Scope (property, method);
class T_Base
{
};
[Association, Description ("One line.") : DisableOverride Restricted Translatable, Level {},
    Mark ('"'), Ratio (0.1)]
class T_Every : T_Base
{
    T_Base REF Left = $Alias;

    T_Base REF Right = "T_Base.Name=\"x\"";

    [Embedded ("T_Base"), Mark (NULL)]
    string Object = NULL;

    [Association (false), Values (NULL)]
    boolean Flag = true;

    uint8 Size[4] = {0, 255};

    sint64 Least = -9223372036854775808;

    uint64 Most = 18446744073709551615;

    real32 Real[] = {1.0, -0.0, 1.0e+20, 3.4028234e+38, 5.0e-324, 7};

    char16 Letters[] = {'a', '\\', '\n', '\x0001', 'é', 8364};

    datetime When = "20261122023000.000000+000";

    [Description (
            "A text that is longer than a line is broken after a space, where it has one that "
            "is near enough to the end of the line. \n"
            "A line end of the text ends the line here as well.\n")]
    string Text =
        "A default value of a hundred characters does not fit beside the name and type of its "
        "property either.";

    [Values {"one", "two", "three", "four", "five", "six", "seven", "eight", "nine", "ten"}]
    string Short;

    [Values {
            "as many of these elements as fit are on each of the lines", "one", "two", "three",
            "A text that is longer than a line is broken in an array as it is broken outside of "
            "arrays.",
            NULL, "four"},
        Ratio (1.0)]
    string Long[] = {
        "an array that does not fit beside the name", "of a property has its elements", "below"};

    string Stop ();

    [Description ("Does something.")]
    T_Base REF Start (
        [Description ("Where."), Embedded ("T_Base")]
        string What,
        T_Base REF Whom[],
        uint16 Times[8]);
};
)";

TEST(MofWriter, WritesEveryFormOfADeclarationOnShortLines) {
    const Compilation compilation = compiled(kEveryForm);
    ASSERT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(mofOf(compilation), kEveryForm);
    expectSameWhenCompiledAgain(compilation);
}

TEST(MofWriter, WritesABooleanQualifierThatIsTrueWithoutAValue) {
    EXPECT_EQ(mofOf(compiled("Qualifier Key : boolean, Scope (any);\n"
                             "[Key (true)] class A { [Key] string B; };")),
              "Qualifier Key : boolean,\n    Scope (any);\n"
              "[Key]\nclass A\n{\n    [Key]\n    string B;\n};\n");
}

// Nothing says that such a qualifier is boolean.
TEST(MofWriter, WritesTheValueOfAQualifierThatIsNotDeclared) {
    EXPECT_EQ(mofOf(compiled("[Unknown (true), Other] class A {};")),
              "[Unknown (true), Other]\nclass A\n{\n};\n");
}

ClassDeclaration classWith(const Literal& literal, DataType type) {
    ClassDeclaration declaration;
    declaration.name.text = "A";
    declaration.properties.resize(1);
    declaration.properties.front().name.text = "B";
    declaration.properties.front().type.dataType = type;
    declaration.properties.front().defaultValue =
        Value{.isArray = false, .position = {}, .literals = {literal}};
    return declaration;
}

void expectSameWhenCompiledAgain(const Literal& literal, DataType type) {
    const std::string mof = mofOf(classWith(literal, type));
    const Compilation again = compiled(mof);
    ASSERT_EQ(diagnosticsOf(again), "") << mof;
    EXPECT_TRUE(isSame(again.classes.at(0), classWith(literal, type))) << mof;
}

TEST(MofWriter, TextsOfAllCharactersAreTheSameWhenCompiledAgain) {
    std::vector<std::string> texts = {
        "",
        " ",
        "\n",
        "\n\n",
        "\r\n",
        "\\",
        "\\\\",
        "\"",
        "'",
        "\\x41",
        "\x01"
        "41",
        "/* no comment",
        "// none",
        "#pragma include (\"a.mof\")",
        "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
        "\xEF\xBB\xBF",
        std::string(500, 'x'),
        std::string(500, ' '),
        std::string(500, '"'),
        std::string(500, '\\'),
    };
    for (char byte = 1; byte != '\x7F'; ++byte)
        texts.front() += byte;
    texts.front() += '\x7F';
    texts.emplace_back();
    // A part ends neither within a character nor within an escape, wherever the line is full.
    for (std::size_t length = 60; length < 100; ++length) {
        texts.push_back(std::string(length, 'x') + "\xF0\x9F\x98\x80\xF0\x9F\x98\x80\\\\\x01\x01");
        texts.push_back("x " + std::string(length, 'x') + "\xE2\x82\xAC");
    }
    for (const std::string& text : texts) {
        Literal literal;
        literal.kind = Literal::Kind::kString;
        literal.text = TSKString(text);
        expectSameWhenCompiledAgain(literal, DataType::kString);
    }
}

TEST(MofWriter, CharactersAreTheSameWhenCompiledAgain) {
    for (const char16_t code : std::u16string(u"\x01\t\n\"'\\\x7F\u20AC\uFFFF")) {
        Literal literal;
        literal.kind = Literal::Kind::kCharacter;
        literal.character = code;
        expectSameWhenCompiledAgain(literal, DataType::kChar16);
    }
}

TEST(MofWriter, NumbersAreTheSameWhenCompiledAgain) {
    using Limits = std::numeric_limits<double>;
    for (const double real : {0.0, 1.0, 0.1, 1.0 / 3, 1e15, 1e16, 1e100, 123456789.0, Limits::max(),
                              Limits::min(), Limits::denorm_min(), Limits::epsilon()}) {
        for (const double sign : {1.0, -1.0}) {
            Literal literal;
            literal.kind = Literal::Kind::kReal;
            literal.real = sign * real;
            expectSameWhenCompiledAgain(literal, DataType::kReal64);
        }
    }
}

TEST(MofWriter, TheSampleModelIsTheSameWhenCompiledAgain) {
    CompilerOptions options;
    options.includePath = {MODELS_DIRECTORY};
    for (const char* const file : {"/cimv2/cimv2.mof", "/interop/interop.mof"})
        expectSameWhenCompiledAgain(compile({MODELS_DIRECTORY + std::string(file)}, options));
}

TEST(MofWriter, TheDmtfSchemaIsTheSameWhenCompiledAgainAndHasShortLines) {
    if (cimSchemaFile().empty())
        GTEST_SKIP() << kNoCimSchema;
    const Compilation schema = compile({cimSchemaFile()});
    expectSameWhenCompiledAgain(schema);
    std::istringstream lines(mofOf(schema));
    std::string longest;
    for (std::string line; std::getline(lines, line);)
        longest = std::max(longest, line, [](const std::string& left, const std::string& right) {
            return left.size() < right.size();
        });
    EXPECT_LE(longest.size(), 100U) << longest;
}

}  // namespace

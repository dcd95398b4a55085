#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Loading/ImportFiles.h"
#include "Tests/Support/MofDirectory.h"

namespace {

using namespace Loading;

Mof::Compilation compiled(std::string_view mof) {
    const MofDirectory directory;
    return Mof::compile({directory.write("a.mof", mof)});
}

std::string contentOf(const std::vector<ImportFile>& files, std::string_view name) {
    const auto file = std::ranges::find(files, name, &ImportFile::name);
    return file == files.end() ? "none" : file->content;
}

// The names that the main file of classes includes, in its order.
std::string inclusionsOf(std::string_view mof) {
    std::string names;
    for (const ImportFile& file : importFiles(compiled(mof)))
        names += file.name + " ";
    return names;
}

TEST(ImportFiles, AreQualifiersClassesAndAFileThatIncludesThem) {
    const std::vector<ImportFile> files =
        importFiles(compiled("Qualifier Key : boolean, Scope (property);\n"
                             "class B : A {}; class A { [Key] string P; };"));
    ASSERT_EQ(files.size(), 4U);
    EXPECT_EQ(contentOf(files, "qualifiers.mof"),
              "// All qualifiers.\nQualifier Key : boolean,\n    Scope (property);\n");
    EXPECT_EQ(contentOf(files, "A.mof"), "class A\n{\n    [Key]\n    string P;\n};\n");
    EXPECT_EQ(contentOf(files, "B.mof"), "class B : A\n{\n};\n");
    EXPECT_EQ(contentOf(files, "main.mof"),
              "// All classes, each after its superclass.\n"
              "#pragma include (\"qualifiers.mof\")\n"
              "#pragma include (\"A.mof\")\n"
              "#pragma include (\"B.mof\")\n");
}

TEST(ImportFiles, SuperclassesComeFirstAndThenTheNames) {
    EXPECT_EQ(inclusionsOf("class Z {}; class b : Z {}; class A : b {}; class C {};"),
              "qualifiers.mof Z.mof b.mof A.mof C.mof main.mof ");
}

TEST(ImportFiles, ReferencedAndEmbeddedClassesComeBeforeWhatNamesThem) {
    EXPECT_EQ(inclusionsOf("class A { Z ref L; }; class Z {};"),
              "qualifiers.mof Z.mof A.mof main.mof ");
    EXPECT_EQ(inclusionsOf("class A { uint8 Do(Z ref L[]); }; class Z {};"),
              "qualifiers.mof Z.mof A.mof main.mof ");
    EXPECT_EQ(inclusionsOf("Qualifier EmbeddedInstance : string, Scope (any);\n"
                           "class A { [EmbeddedInstance (\"z\")] string P; }; class Z {};"),
              "qualifiers.mof Z.mof A.mof main.mof ");
    EXPECT_EQ(inclusionsOf("class A { Z ref L; }; class Z : Y {}; class Y : X {}; class X {};"),
              "qualifiers.mof X.mof Y.mof Z.mof A.mof main.mof ");
}

// Then one of them must do without.
TEST(ImportFiles, SuperclassesComeFirstAlsoWhenTheyReferToTheirSubclasses) {
    EXPECT_EQ(inclusionsOf("class A { C ref L; }; class B : A {}; class C : B {};"),
              "qualifiers.mof A.mof B.mof C.mof main.mof ");
    EXPECT_EQ(inclusionsOf("class A { B ref L; }; class B { A ref L; };"),
              "qualifiers.mof B.mof A.mof main.mof ");
    EXPECT_EQ(inclusionsOf("class A { A ref L; C ref M; }; class B : A {}; class C { B ref L; };"),
              "qualifiers.mof C.mof A.mof B.mof main.mof ");
}

TEST(ImportFiles, AnEndlessLineOfReferencesIsFollowedSomeWay) {
    constexpr int kClasses = 20'000;
    Mof::Compilation content;
    content.classes.resize(kClasses);
    for (int index = 0; index < kClasses; ++index) {
        Mof::ClassDeclaration& declaration = content.classes[static_cast<std::size_t>(index)];
        declaration.name.text = TSKString("C" + std::to_string(100'000 + index));
        Mof::Property& property = declaration.properties.emplace_back();
        property.name.text = "P";
        property.type.dataType = Mof::DataType::kReference;
        property.type.referencedClass.text = TSKString("C" + std::to_string(100'001 + index));
    }
    EXPECT_EQ(importFiles(content).size(), kClasses + 2U);
}

TEST(ImportFiles, DoNotDependOnTheOrderInWhichTheServerSendsClasses) {
    EXPECT_EQ(inclusionsOf("class B {}; class A {}; class c : B {};"),
              inclusionsOf("class A {}; class c : B {}; class B {};"));
}

TEST(ImportFiles, ANameThatIsTakenOrTooLongIsCompletedByAHash) {
    const std::string longest(251, 'x');
    const std::string tooLong(252, 'x');
    const std::string sharp = "\xC3\xA9";
    std::string nonAscii = "x";
    while (nonAscii.size() < 300)
        nonAscii += sharp;
    std::vector<std::string> names;
    for (const ImportFile& file :
         importFiles(compiled("class Main {}; class QUALIFIERS {}; class " + longest +
                              " {}; class " + tooLong + " {}; class " + nonAscii + " {};")))
        names.push_back(file.name);
    EXPECT_EQ(names,
              (std::vector<std::string>{
                  "qualifiers.mof", "Main-49e763aed00877a8.mof", "QUALIFIERS-a31cac8767d33b64.mof",
                  longest + ".mof", std::string(200, 'x') + "-163d66d138a0fe95.mof",
                  nonAscii.substr(0, 199) + "-d8e6d7765557fb67.mof", "main.mof"}));
}

TEST(ImportFiles, FlavorsThatTheDeclarationOfAQualifierHasAreLeftOut) {
    const std::vector<ImportFile> files = importFiles(compiled(R"(
        Qualifier Plain : string, Scope (any);
        Qualifier Mine : string, Scope (any), Flavor (DisableOverride, Restricted, Translatable);
        [Plain ("a") : EnableOverride ToSubclass, Mine ("b") : DisableOverride Restricted Translatable]
        class A {
            [Plain ("a") : DisableOverride Restricted Translatable]
            string P;
            [Mine ("b") : EnableOverride ToSubclass]
            string M([Mine ("c") : Restricted] string Q);
        };)"));
    EXPECT_EQ(contentOf(files, "A.mof"), R"([Plain ("a"), Mine ("b")]
class A
{
    [Plain ("a") : DisableOverride Restricted Translatable]
    string P;

    [Mine ("b") : EnableOverride ToSubclass]
    string M (
        [Mine ("c")]
        string Q);
};
)");
}

TEST(ImportFiles, QualifiersAreInTheOrderOfTheirNames) {
    EXPECT_EQ(contentOf(importFiles(compiled("Qualifier b : string, Scope (any);\n"
                                             "Qualifier A : string, Scope (any);\n")),
                        "qualifiers.mof"),
              "// All qualifiers.\n"
              "Qualifier A : string,\n    Scope (any);\n"
              "Qualifier b : string,\n    Scope (any);\n");
}

// What a server uses without declaring it has a type there.
Mof::Qualifier use(const char* name, Mof::DataType type, std::vector<Mof::Literal> literals,
                   bool isArray = false) {
    Mof::Qualifier qualifier;
    qualifier.name.text = name;
    qualifier.dataType = type;
    qualifier.value =
        Mof::Value{.isArray = isArray, .position = {}, .literals = std::move(literals)};
    return qualifier;
}

Mof::Literal number(std::uint64_t magnitude) {
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kInteger;
    literal.magnitude = magnitude;
    return literal;
}

TEST(ImportFiles, QualifiersThatAreNotDeclaredAreDeclaredAsTheyAreUsed) {
    using Mof::DataType;
    Mof::Compilation content;
    content.classes.resize(2);
    content.classes[0].name.text = "A";
    content.classes[0].qualifiers = {use("Most", DataType::kUint8, {number(255)}),
                                     use("Many", DataType::kUint8, {Mof::Literal()}),
                                     use("Large", DataType::kUint8, {number(256)}),
                                     use("Mixed", DataType::kUint8, {number(1)}),
                                     use("Sometimes", DataType::kUint8, {number(1)})};
    content.classes[1].name.text = "B";
    content.classes[1].qualifiers = {use("MOST", DataType::kUint8, {Mof::Literal()}),
                                     use("Many", DataType::kUint8, {number(1), number(2)}, true),
                                     use("Mixed", DataType::kSint8, {number(1)}),
                                     use("Sometimes", DataType::kUint8, {number(1)}, true)};
    const std::vector<ImportFile> files = importFiles(content);
    EXPECT_EQ(contentOf(files, "qualifiers.mof"),
              "// All qualifiers.\n"
              "Qualifier Many : uint8[],\n    Scope (any);\n"
              "Qualifier Most : uint8,\n    Scope (any);\n");
    const MofDirectory directory;
    for (const ImportFile& file : files)
        directory.write(file.name, file.content);
    EXPECT_FALSE(Mof::compile({directory.path("main.mof")}).hasErrors());
}

}  // namespace

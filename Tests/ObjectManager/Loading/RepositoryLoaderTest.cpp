#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class RepositoryLoaderTest : public RepositoryTest {
  protected:
    // The classes of a namespace.
    static std::string classesOf(const Loading::LoadedRepository& loaded, const char* nameSpace) {
        std::string names;
        for (const auto& cimClass : loaded.repository->findNamespace(nameSpace)->classes())
            names += (names.empty() ? "" : " ") + std::string(cimClass->name().data());
        return names;
    }
};

TEST_F(RepositoryLoaderTest, NoSourcesGiveAnEmptyRepository) {
    const Loading::LoadedRepository loaded = Loading::loadRepository({}, {}, {});
    EXPECT_TRUE(loaded.repository->namespaces().empty());
    EXPECT_TRUE(loaded.diagnostics.empty());
}

TEST_F(RepositoryLoaderTest, ASourceMayHaveFilesAndDirectories) {
    const std::string file = directory_.write("a.mof", "class A_B : A_C {};");
    directory_.write("directory/c.mof", "class A_C : A_D {};");
    directory_.write("directory/below/d.mof", "class A_D {};");
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {file, directory_.path("directory")}}}, {}, {});
    EXPECT_EQ(directory_.shown(loaded.diagnostics), "");
    EXPECT_EQ(classesOf(loaded, "root/one"), "A_B A_C A_D");
}

TEST_F(RepositoryLoaderTest, SourcesOfOneNamespaceInAnyCaseAddUp) {
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/One", {directory_.write("a.mof", "class A_B : A_C {};")}},
                                 {"root/two", {directory_.write("b.mof", "class A_X {};")}},
                                 {"ROOT/ONE", {directory_.write("c.mof", "class A_C : A_D {};")}},
                                 {"root/one", {directory_.write("d.mof", "class A_D {};")}}},
                                {}, {});
    EXPECT_EQ(directory_.shown(loaded.diagnostics), "");
    ASSERT_EQ(loaded.repository->namespaces().size(), 2U);
    EXPECT_EQ(loaded.repository->namespaces()[0].name(), "root/One");
    EXPECT_EQ(classesOf(loaded, "root/one"), "A_B A_C A_D");
    EXPECT_EQ(classesOf(loaded, "root/two"), "A_X");
}

TEST_F(RepositoryLoaderTest, NamespacesDoNotKnowEachOthersClasses) {
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {directory_.write("a.mof", "class A_B {};")}},
                                 {"root/two", {directory_.write("b.mof", "class A_C : A_B {};")}}},
                                {}, {});
    EXPECT_TRUE(loaded.repository.isNull());
    EXPECT_EQ(directory_.shown(loaded.diagnostics),
              "b.mof:1:13: error: the superclass \"A_B\" of \"A_C\" is not declared\n"
              "class A_C : A_B {};\n"
              "            ^\n");
}

TEST_F(RepositoryLoaderTest, TheSameFilesMayBeInSeveralNamespaces) {
    const std::string file = directory_.write("a.mof", "class A_B {};");
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {file}}, {"root/two", {file}}}, {}, {});
    EXPECT_EQ(classesOf(loaded, "root/one"), "A_B");
    EXPECT_EQ(classesOf(loaded, "root/two"), "A_B");
    EXPECT_FALSE(loaded.repository->getClass("root/one", "A_B") ==
                 loaded.repository->getClass("root/two", "A_B"));
}

TEST_F(RepositoryLoaderTest, ErrorsGiveNoRepositoryButTheDiagnosticsOfAllNamespaces) {
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {directory_.write("a.mof", "[Odd] class A_B {};")}},
                                 {"root/two", {directory_.write("b.mof", "class {};")}},
                                 {"root/three", {directory_.write("c.mof", "class A_B {};")}},
                                 {"root/four", {directory_.path("none.mof")}}},
                                {}, {});
    EXPECT_TRUE(loaded.repository.isNull());
    EXPECT_EQ(directory_.shown(loaded.diagnostics),
              "a.mof:1:2: warning: the qualifier \"Odd\" is not declared\n"
              "[Odd] class A_B {};\n"
              " ^\n"
              "b.mof:1:7: error: found \"{\", expected a name\n"
              "class {};\n"
              "      ^\n"
              "none.mof: error: cannot be read: No such file or directory\n");
}

TEST_F(RepositoryLoaderTest, WarningsComeWithTheRepository) {
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{"root/one", {directory_.write("a.mof", "[Odd] class A_B {};")}}}, {}, {});
    EXPECT_EQ(loaded.diagnostics.size(), 1U);
    EXPECT_EQ(classesOf(loaded, "root/one"), "A_B");
}

TEST_F(RepositoryLoaderTest, UndeclaredQualifiersAreKeptAndPropagate) {
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{"root/one",
          {directory_.write("a.mof", "[Odd, Odder (5)] class A_B {}; class A_C : A_B {};")}}},
        {}, {});
    EXPECT_EQ(qualifiersOf(*loaded.repository->getClass("root/one", "A_C"), true),
              "Odd(true) Odder(5)");
}

TEST_F(RepositoryLoaderTest, IncludedFilesAreFoundOnTheIncludePath) {
    directory_.write("shared/b.mof", "class A_C {};");
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{"root/one",
          {directory_.write("a.mof", "#pragma include (\"b.mof\")\nclass A_B : A_C {};")}}},
        {directory_.path("shared")}, {});
    EXPECT_EQ(directory_.shown(loaded.diagnostics), "");
    EXPECT_EQ(classesOf(loaded, "root/one"), "A_B A_C");
}

TEST_F(RepositoryLoaderTest, OptionsHoldForEveryNamespace) {
    const std::string file =
        directory_.write("a.mof", "[Description (\"<b>\")] class A_B { uint8 q; uint8 p; };");
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{"root/one", {file}}, {"root/two", {file}}}, {},
        {.propertyOrder = Repository::PropertyOrder::kDeclaration, .escapeDescriptions = false});
    for (const char* const nameSpace : {"root/one", "root/two"}) {
        const TSKSmrPtr<ITeskClass> found = loaded.repository->getClass(nameSpace, "A_B");
        EXPECT_EQ(propertiesOf(*found, true), "q p");
        EXPECT_EQ(qualifiersOf(*found, true), "Description(<b>)");
    }
}

TEST_F(RepositoryLoaderTest, TheModelHasALargestSizeForAllNamespacesTogether) {
    const std::string first = directory_.write("a.mof", "class A_B {};");
    const std::string second = directory_.write("b.mof", "class A_C {};");
    Repository::Options options;
    options.maxModelSize = 26;
    EXPECT_TRUE(
        Loading::loadRepository({{"root/one", {first}}, {"root/two", {second}}}, {}, options)
            .repository);
    options.maxModelSize = 25;
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {first}}, {"root/two", {second}}}, {}, options);
    EXPECT_TRUE(loaded.repository.isNull());
    EXPECT_EQ(directory_.shown(loaded.diagnostics),
              "b.mof: error: is not read: with it the model would be larger than "
              "repository.max_model_size\n");
}

// Each had a list of its own, which was sorted anew: 5,000 classes took seven seconds.
TEST_F(RepositoryLoaderTest, ManyClassesThatAddNothingToAWideOneAreLoadedInAMoment) {
    constexpr int kMany = 3000;
    std::string mof = "class A_B {";
    for (int number = 0; number < kMany; ++number)
        mof += "uint8 p" + std::to_string(number) + ";";
    mof += "};\n";
    for (int number = 0; number < kMany; ++number)
        mof += "class A_" + std::to_string(number) + " : A_B {};\n";
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {directory_.write("a.mof", mof)}}}, {}, {});
    const Repository::CimNamespace& nameSpace = *loaded.repository->findNamespace("root/one");
    EXPECT_EQ(nameSpace.findClass("A_2999")->properties(),
              nameSpace.findClass("A_B")->properties());
    EXPECT_EQ(propertiesOf(*nameSpace.findClass("A_2999"), false), "");
}

// The qualifiers of each level were held against each of the level above.
TEST_F(RepositoryLoaderTest, VeryManyQualifiersOnEveryLevelAreLoadedInAMoment) {
    constexpr int kVeryMany = 20000;
    const auto qualifiers = [](char first) {
        std::string list;
        for (int number = 0; number < kVeryMany; ++number)
            list += (number == 0 ? "" : ", ") + std::string(1, first) + std::to_string(number);
        return "[" + list + "]";
    };
    const std::string file = directory_.write(
        "a.mof", qualifiers('A') + "class A_B {" + qualifiers('D') + "uint8 p; };" +
                     qualifiers('B') + "class A_C : A_B {" + qualifiers('E') + "uint8 p; };" +
                     qualifiers('C') + "class A_D : A_C {" + qualifiers('d') + "uint8 p; };");
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/one", {file}}}, {}, {});
    const TSKSmrPtr<ITeskClass> found = loaded.repository->getClass("root/one", "A_D");
    EXPECT_NE(found->getQualifier("A19999", true), nullptr);
    EXPECT_EQ(found->getQualifier("A19999", false), nullptr);
    const urma::IPropertyDef& property = propertyOf(*found, "p");
    int count = 0;
    for (const auto all = property.getQualifiers(true); all->hasCurrent(); all->advance())
        ++count;
    EXPECT_EQ(count, 2 * kVeryMany);
}

}  // namespace

#include "ObjectManager/Repository/CimNamespace.h"
#include "ObjectManager/Repository/DocumentSize.h"
#include "Tests/Support/MofModel.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class CimNamespaceTest : public RepositoryTest {
  protected:
    static std::string classesOf(const Repository::CimNamespace& nameSpace) {
        std::string names;
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes())
            names += (names.empty() ? "" : " ") + std::string(cimClass->name().data());
        return names;
    }
};

TEST_F(CimNamespaceTest, ClassesAreListedInByteOrder) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        load("class b_x {}; class A_x : a_B {}; class A_1 {}; class A_B : a_c {}; class A_C {};");
    EXPECT_EQ(classesOf(repository->namespaces().at(0)), "A_1 A_B A_C A_x b_x");
}

TEST_F(CimNamespaceTest, ClassesAreFoundInAnyCase) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        load("class A_Bc {}; class A_De : A_bC {};");
    const Repository::CimNamespace& nameSpace = repository->namespaces().at(0);
    for (const char* const name : {"A_De", "a_de", "A_DE"})
        EXPECT_EQ(nameSpace.findClass(name)->name(), "A_De");
    EXPECT_EQ(nameSpace.findClass("a_de")->superclass(), nameSpace.findClass("a_bc").get());
    for (const char* const name : {"A_D", "A_Dee", "", " A_De"})
        EXPECT_TRUE(nameSpace.findClass(name).isNull()) << name;
}

// A class whose documents would be too large, its subclasses each by itself.
TEST_F(CimNamespaceTest, LeavesOutClassesWithTooLargeDocuments) {
    const std::string mof =
        "class A_Large { [ValueMap{\"4294967295\", \"..\"}] uint32 q; };\n"
        "class A_Same : A_Large {};\n"
        "class A_Small : A_Large { [Override(\"q\")] uint32 q; };\n"
        "class A_Other {};";
    const TSKSmrPtr<Repository::ClassRepository> repository = MofModel(mof).repository();
    const Repository::CimNamespace& nameSpace = repository->namespaces().at(0);
    EXPECT_EQ(classesOf(nameSpace), "A_Other A_Small");
    EXPECT_EQ(repository->countClasses(), 2U);
    EXPECT_TRUE(repository->getClass("root/test", "A_Large").isNull());
    EXPECT_TRUE(nameSpace.findClass("A_Same").isNull());
    EXPECT_EQ(nameSpace.findClass("A_Small")->superclass()->name(), "A_Large");
    ASSERT_EQ(nameSpace.omittedClasses().size(), 2U);
    for (const Repository::OmittedClass& omitted : nameSpace.omittedClasses()) {
        EXPECT_EQ(omitted.member, "q");
        EXPECT_EQ(omitted.reason,
                  "its documents would have up to 253.4 GB, the property \"q\" alone 253.4 GB; at "
                  "most 67.1 MB are allowed (repository.max_document_size)");
    }
    EXPECT_EQ(nameSpace.omittedClasses()[0].name, "A_Large");
    EXPECT_EQ(nameSpace.omittedClasses()[1].name, "A_Same");
}

TEST_F(CimNamespaceTest, ADocumentMayHaveItsLargestSizeAndNoMore) {
    const char* const mof = "class A_B { uint8 p; };";
    Repository::Options options;
    options.maxDocumentSize = documentSizeOf(*load(mof)->namespaces().at(0).findClass("A_B"));
    EXPECT_EQ(classesOf(load(mof, options)->namespaces().at(0)), "A_B");
    --options.maxDocumentSize;
    EXPECT_EQ(classesOf(load(mof, options)->namespaces().at(0)), "");
}

TEST_F(CimNamespaceTest, MayBeEmpty) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load("");
    EXPECT_EQ(repository->namespaces().at(0).name(), "root/test");
    EXPECT_EQ(classesOf(repository->namespaces().at(0)), "");
}

TEST_F(CimNamespaceTest, TwoHundredSuperclassesMayBeDeclaredAfterTheirSubclasses) {
    std::string mof;
    for (int number = 200; number > 0; --number) {
        mof += "class A_" + std::to_string(number) + " : A_" + std::to_string(number - 1) +
               " { uint8 p" + std::to_string(number) + "; };\n";
    }
    const TSKSmrPtr<Repository::ClassRepository> repository =
        load(mof + "class A_0 { uint8 p0; };");
    const Repository::CimNamespace& nameSpace = repository->namespaces().at(0);
    EXPECT_EQ(nameSpace.classes().size(), 201U);
    EXPECT_EQ(nameSpace.findClass("A_200")->properties().size(), 201U);
}

}  // namespace

#include "ObjectManager/Repository/CimNamespace.h"
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

#include "ObjectManager/Repository/CimMembers.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class CimMembersTest : public RepositoryTest {};

TEST_F(CimMembersTest, HasATypeAndParametersInTheirOrder) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "class A_B { uint32 M(string b, uint8 a[], A_B ref C[2], boolean _d); A_B ref N(); };",
        "A_B");
    const urma::IMethodDef& method = methodOf(*found, "M");
    EXPECT_EQ(textOf(method.getReturnType()), "uint32");
    EXPECT_EQ(parametersOf(method), "b a C _d");
    EXPECT_EQ(textOf(parameterOf(method, "b").getType()), "string");
    EXPECT_EQ(textOf(parameterOf(method, "a").getType()), "uint8[]");
    EXPECT_EQ(textOf(parameterOf(method, "C").getType()), "ref[]");
    EXPECT_EQ(textOf(parameterOf(method, "_d").getType()), "boolean");
    const urma::IMethodDef& other = methodOf(*found, "N");
    EXPECT_EQ(textOf(other.getReturnType()), "ref");
    EXPECT_EQ(parametersOf(other), "");
}

TEST_F(CimMembersTest, ReferencesNameTheirClass) {
    const TSKSmrPtr<ITeskClass> found =
        classOf("class A_B { A_B ref M(uint8 p, A_B ref q); uint8 N(); };", "A_B");
    const auto& method = dynamic_cast<const Repository::CimMethod&>(methodOf(*found, "M"));
    EXPECT_EQ(method.referencedClass(), "A_B");
    EXPECT_EQ(method.parameters().at(0).referencedClass(), "");
    EXPECT_EQ(method.parameters().at(1).referencedClass(), "A_B");
    EXPECT_EQ(dynamic_cast<const Repository::CimMethod&>(methodOf(*found, "N")).referencedClass(),
              "");
}

constexpr const char* kOverridden = R"(
class A_Top {
    [Note ("top"), Version ("1")] uint32 M(
        [Key, Note ("a")] uint8 a,
        [Key, Version ("1")] uint8 b,
        [Key] uint8 gone);
};
class A_Middle : A_Top {
    [Version ("2")] uint32 m(
        [Note ("added")] uint8 added,
        [Plain ("B")] uint8 B,
        [Note ("A")] uint8 A);
};
class A_Bottom : A_Middle {
    uint32 M(uint8 a, uint8 b, uint8 added, uint8 gone);
};
)";

TEST_F(CimMembersTest, AnOverrideHasItsOwnParametersInItsOwnOrder) {
    const TSKSmrPtr<ITeskClass> middle = classOf(kOverridden, "A_Middle");
    EXPECT_EQ(methodsOf(*middle, true), "m");
    EXPECT_EQ(parametersOf(methodOf(*middle, "m")), "added B A");
}

TEST_F(CimMembersTest, AnOverrideHasThePropagatedQualifiersOfTheOverridden) {
    const TSKSmrPtr<ITeskClass> middle = classOf(kOverridden, "A_Middle");
    EXPECT_EQ(qualifiersOf(methodOf(*middle, "m"), false), "Version(2)");
    EXPECT_EQ(qualifiersOf(methodOf(*middle, "m"), true), "Version(2) Note(top)");
    const TSKSmrPtr<ITeskClass> bottom = classOf(kOverridden, "A_Bottom");
    EXPECT_EQ(qualifiersOf(methodOf(*bottom, "M"), false), "");
    EXPECT_EQ(qualifiersOf(methodOf(*bottom, "M"), true), "Note(top)");
}

TEST_F(CimMembersTest, AParameterHasThePropagatedQualifiersOfTheOneOfItsNameInAnyCaseAndPlace) {
    const TSKSmrPtr<ITeskClass> found = classOf(kOverridden, "A_Middle");
    const urma::IMethodDef& method = methodOf(*found, "m");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "added"), true), "Note(added)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "B"), false), "Plain(B)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "B"), true), "Plain(B) Key(true)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "A"), true), "Note(A) Key(true)");
}

TEST_F(CimMembersTest, AParameterIsNewWhereTheOverriddenMethodHasItNoMore) {
    const TSKSmrPtr<ITeskClass> found = classOf(kOverridden, "A_Bottom");
    const urma::IMethodDef& method = methodOf(*found, "M");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "a"), true), "Note(A) Key(true)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "b"), true), "Plain(B) Key(true)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "added"), true), "Note(added)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "gone"), true), "");
}

}  // namespace

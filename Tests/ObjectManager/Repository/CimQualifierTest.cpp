#include "ObjectManager/Repository/CimQualifier.h"
#include "Tests/ObjectManager/Repository/RepositoryTest.h"

namespace {

class CimQualifierTest : public RepositoryTest {
  protected:
    // The qualifier that is written alone on a class.
    const urma::IQualifier* only(const std::string& mof,
                                 const Repository::RepositoryOptions& options = {}) {
        class_ = classOf("[" + mof + "] class A_B {};", "A_B", options);
        return &class_->getQualifiers(false)->current();
    }

    std::string textOfOnly(const std::string& mof,
                           const Repository::RepositoryOptions& options = {}) {
        return textOf(only(mof, options)->getValue().get());
    }

    static constexpr Repository::RepositoryOptions kRaw = {
        .propertyOrder = Repository::PropertyOrder::kName, .escapeDescriptions = false};

    TSKSmrPtr<ITeskClass> class_;
};

TEST_F(CimQualifierTest, NamesAreAsWritten) {
    EXPECT_EQ(only("KEY")->getName(), "KEY");
}

TEST_F(CimQualifierTest, ABooleanWithoutAValueIsTrue) {
    const urma::IQualifier* const key = only("Key");
    EXPECT_TRUE(key->hasValue());
    EXPECT_TRUE(key->getValue()->toBoolean());
    EXPECT_EQ(textOf(*key->getValue()->getType()), "boolean");
    EXPECT_EQ(key->getValue()->toString(), "true");
    EXPECT_EQ(textOfOnly("Key (false)"), "false");
}

TEST_F(CimQualifierTest, NullIsNoValue) {
    const urma::IQualifier* const note = only("Note (null)");
    EXPECT_FALSE(note->hasValue());
    EXPECT_TRUE(note->getValue().isNull());
}

TEST_F(CimQualifierTest, WithoutAValueNothingButABooleanHasOneNotEvenItsDefault) {
    const std::string file = folder_.write(
        "b.mof", "Qualifier Note : string = \"default\", Scope (any); [Note] class A_B {};");
    const Repository::LoadedRepository loaded =
        Repository::loadRepository({{.name = "root/test", .paths = {file}}}, {}, {});
    EXPECT_EQ(qualifiersOf(*loaded.repository->getClass("root/test", "A_B"), true), "Note(null)");
}

TEST_F(CimQualifierTest, DescriptionsAreEscapedOnce) {
    EXPECT_EQ(textOfOnly("Description (\"a & b < c > d\")"), "a &amp; b &lt; c &gt; d");
    EXPECT_EQ(textOfOnly("DESCRIPTION (\"&<>\")"), "&amp;&lt;&gt;");
    EXPECT_EQ(textOfOnly("Description (\"&amp; &lt;\")"), "&amp;amp; &amp;lt;");
    EXPECT_EQ(textOfOnly("Description (\"\")"), "");
    EXPECT_EQ(textOfOnly("Description (\"quotes ' \\\" stay\")"), "quotes ' \" stay");
    EXPECT_EQ(textOfOnly("Description (\"gr\xC3\xBC\xC3\x9F > \xE2\x82\xAC\")"),
              "gr\xC3\xBC\xC3\x9F &gt; \xE2\x82\xAC");
}

TEST_F(CimQualifierTest, DescriptionsMayBeHandedOutRaw) {
    EXPECT_EQ(textOfOnly("Description (\"a & b < c > d &amp;\")", kRaw), "a & b < c > d &amp;");
}

TEST_F(CimQualifierTest, OtherQualifiersAreNeverEscaped) {
    for (const Repository::RepositoryOptions& options : {Repository::RepositoryOptions(), kRaw}) {
        EXPECT_EQ(textOfOnly("Note (\"&<>\")", options), "&<>");
        EXPECT_EQ(textOfOnly("Values {\"&\", \"<\", \">\"}", options), "{&, <, >}");
    }
}

TEST_F(CimQualifierTest, PropagatedAndInheritedDescriptionsAreEscapedOnce) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "[Description (\"<c>\")] class A_B { [Description (\"<p>\")] uint8 p;\n"
        "[Description (\"<q>\")] uint8 q; };\n"
        "class A_C : A_B { uint8 p; };\n"
        "class A_D : A_C { uint8 p; };",
        "A_D");
    EXPECT_EQ(qualifiersOf(*found, true), "Description(&lt;c&gt;)");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "p"), true), "Description(&lt;p&gt;)");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "q"), true), "Description(&lt;q&gt;)");
}

TEST_F(CimQualifierTest, ValuesHaveTheDeclaredType) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "Qualifier MaxLen : uint32, Scope (any); Qualifier Levels : sint8[], Scope (any);\n"
        "[MaxLen (64), Levels {}, Values {null}] class A_B {};",
        "A_B");
    const auto typeOf = [&](const char* name) {
        return textOf(*found->getQualifier(name, false)->getValue()->getType());
    };
    EXPECT_EQ(typeOf("MaxLen"), "uint32");
    EXPECT_EQ(typeOf("Levels"), "sint8[]");
    EXPECT_EQ(typeOf("Values"), "string[]");
}

}  // namespace

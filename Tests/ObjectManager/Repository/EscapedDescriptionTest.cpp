#include "ObjectManager/Repository/CimClass.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class EscapedDescriptionTest : public RepositoryTest {
  protected:
    // The qualifier that is written alone on a class.
    const urma::IQualifier* only(const std::string& mof, const Repository::Options& options = {}) {
        class_ = classOf("[" + mof + "] class A_B {};", "A_B", options);
        return &class_->getQualifiers(false)->current();
    }

    std::string textOfOnly(const std::string& mof, const Repository::Options& options = {}) {
        return textOf(only(mof, options)->getValue().get());
    }

    static constexpr Repository::Options kRaw = {.propertyOrder = Repository::PropertyOrder::kName,
                                                 .escapeDescriptions = false};

    TSKSmrPtr<ITeskClass> class_;
};

TEST_F(EscapedDescriptionTest, DescriptionsAreEscapedOnce) {
    EXPECT_EQ(textOfOnly("Description (\"a & b < c > d\")"), "a &amp; b &lt; c &gt; d");
    EXPECT_EQ(textOfOnly("DESCRIPTION (\"&<>\")"), "&amp;&lt;&gt;");
    EXPECT_EQ(textOfOnly("Description (\"&amp; &lt;\")"), "&amp;amp; &amp;lt;");
    EXPECT_EQ(textOfOnly("Description (\"\")"), "");
    EXPECT_EQ(textOfOnly("Description (\"quotes ' \\\" stay\")"), "quotes ' \" stay");
    EXPECT_EQ(textOfOnly("Description (\"gr\xC3\xBC\xC3\x9F > \xE2\x82\xAC\")"),
              "gr\xC3\xBC\xC3\x9F &gt; \xE2\x82\xAC");
}

TEST_F(EscapedDescriptionTest, DescriptionsMayBeHandedOutRaw) {
    EXPECT_EQ(textOfOnly("Description (\"a & b < c > d &amp;\")", kRaw), "a & b < c > d &amp;");
}

TEST_F(EscapedDescriptionTest, OtherQualifiersAreNeverEscaped) {
    for (const Repository::Options& options : {Repository::Options(), kRaw}) {
        EXPECT_EQ(textOfOnly("Note (\"&<>\")", options), "&<>");
        EXPECT_EQ(textOfOnly("Values {\"&\", \"<\", \">\"}", options), "{&, <, >}");
    }
}

TEST_F(EscapedDescriptionTest, PropagatedAndInheritedDescriptionsAreEscapedOnce) {
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

TEST_F(EscapedDescriptionTest, TheDeclaredTextStaysKnown) {
    for (const Repository::Options& options : {Repository::Options(), kRaw}) {
        (void)only("DESCRIPTION (\"a & b &lt; c\")", options);
        const auto& cimClass = dynamic_cast<const Repository::CimClass&>(*class_);
        EXPECT_EQ(cimClass.description(), "a & b &lt; c");
    }
}

TEST_F(EscapedDescriptionTest, IsOfTheTypeString) {
    EXPECT_EQ(textOf(*only("Description (\"<\")")->getValue()->getType()), "string");
    EXPECT_FALSE(only("Description (\"<\")")->getValue()->toBoolean());
}

TEST_F(EscapedDescriptionTest, ADescriptionThatIsNotWrittenHereIsEmpty) {
    class_ = classOf("[Description (\"a\")] class A_B {}; class A_C : A_B {};", "A_C");
    EXPECT_EQ(dynamic_cast<const Repository::CimClass&>(*class_).description(), "");
    (void)only("Description (null)");
    EXPECT_EQ(dynamic_cast<const Repository::CimClass&>(*class_).description(), "");
}

}  // namespace

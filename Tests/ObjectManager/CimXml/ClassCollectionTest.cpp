#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/CimXml/ServerError.h"
#include "Tests/ObjectManager/CimXml/Collected.h"

namespace {

using CimXml::ServerError;

constexpr const char* kInherited = "PROPAGATED=\"true\"";

// The declarations of classes, without those of the qualifiers.
std::string declared(const std::string& classes) {
    const std::string text = Collected(kNoteAndMine).classes(classes).text();
    const std::string qualifiers = kNoteAndMineText;
    return text.starts_with(qualifiers) ? text.substr(qualifiers.size()) : text;
}

const std::string kTop = cimClass("A_Top", "", property("P", qualifier("Note", "top")));

// What is marked as propagated.

TEST(CimXmlClassCollection, WhatAClassInheritsIsTheSuperclassesOwn) {
    const std::string below =
        cimClass("A_Below", "a_top",
                 property("P", qualifier("Note", "top"), kInherited) + property("Q", ""));
    const std::string expected = "class A_Below : a_top\n  string Q\n";
    EXPECT_EQ(declared(kTop + below), "class A_Top\n  [Note(\"top\")] string P\n" + expected);
    // In any order.
    EXPECT_EQ(declared(below + kTop), expected + "class A_Top\n  [Note(\"top\")] string P\n");
}

// As one server marks them under LocalOnly=false: the member, and the qualifiers that the
// superclass passes on, but not those that the class writes.
TEST(CimXmlClassCollection, AnOverriddenMemberMayBeMarkedAsPropagated) {
    EXPECT_EQ(declared(kTop + cimClass("A_Below", "A_Top",
                                       property("P",
                                                qualifier("Mine", "x") +
                                                    qualifier("Note", "top", kInherited),
                                                kInherited))),
              "class A_Top\n  [Note(\"top\")] string P\n"
              "class A_Below : A_Top\n  [Mine(\"x\")] string P\n");
}

// As another server does: the member is local, and what it inherits has no mark.
TEST(CimXmlClassCollection, AnOverriddenMemberMayBeUnmarked) {
    EXPECT_EQ(
        declared(
            kTop +
            cimClass("A_Below", "A_Top",
                     property("P", qualifier("Mine", "x") + qualifier("Note", "top", kInherited))) +
            cimClass("A_Last", "A_Below",
                     property("P", qualifier("Mine", "x") + qualifier("Note", "top"), kInherited))),
        "class A_Top\n  [Note(\"top\")] string P\n"
        "class A_Below : A_Top\n  [Mine(\"x\")] string P\n"
        "class A_Last : A_Below\n");
}

TEST(CimXmlClassCollection, AnInheritedMemberMayLackQualifiersThatAreNotPassedOn) {
    const std::string restricted = "TOSUBCLASS=\"false\"";
    EXPECT_EQ(
        declared(
            cimClass("A_Top", "",
                     property("P", qualifier("Mine", "x", restricted) + qualifier("Note", "top"))) +
            cimClass("A_Below", "A_Top", property("p", qualifier("note", "top"), kInherited))),
        "class A_Top\n  [Mine(\"x\") Restricted, Note(\"top\")] string P\nclass A_Below : A_Top\n");
}

TEST(CimXmlClassCollection, AnyOtherDifferenceMakesAMemberTheClassesOwn) {
    const char* const kNote = "<QUALIFIER NAME=\"Note\" TYPE=\"string\">";
    const std::string members[] = {
        property("P", qualifier("Note", "other"), kInherited),
        property("P", "", kInherited),
        property("P", qualifier("Note", "top") + qualifier("Mine", "x"), kInherited),
        property("P", qualifier("Note", "top") + "<VALUE>x</VALUE>", kInherited),
        property("P", kNote + std::string("<VALUE.NULL/></QUALIFIER>"), kInherited),
        "<PROPERTY NAME=\"P\" TYPE=\"uint8\" PROPAGATED=\"true\">" + qualifier("Note", "top") +
            "</PROPERTY>",
        "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\" PROPAGATED=\"true\">" +
            qualifier("Note", "top") + "</PROPERTY.ARRAY>",
        "<PROPERTY.REFERENCE NAME=\"P\" REFERENCECLASS=\"A_Top\" PROPAGATED=\"true\"/>",
    };
    for (const std::string& member : members) {
        const std::string text = declared(kTop + cimClass("A_Below", "A_Top", member));
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4) << text;
    }
}

TEST(CimXmlClassCollection, AMethodIsInheritedWithItsParameters) {
    const auto method = [](const std::string& note, const std::string& parameter) {
        return "<METHOD NAME=\"M\" TYPE=\"uint32\" PROPAGATED=\"true\">" + qualifier("Note", note) +
               "<PARAMETER NAME=\"P\" TYPE=\"string\">" + parameter + "</PARAMETER></METHOD>";
    };
    const std::string top = cimClass("A_Top", "", method("m", qualifier("Note", "p")));
    const std::string expected =
        "class A_Top\n  [Note(\"m\")] uint32 M()\n    [Note(\"p\")] string P\n";
    EXPECT_EQ(declared(top + cimClass("A_Below", "A_Top", method("m", qualifier("Note", "p")))),
              expected + "class A_Below : A_Top\n");
    EXPECT_EQ(
        declared(top + cimClass("A_Below", "A_Top", method("m", qualifier("Note", "q")))),
        expected +
            "class A_Below : A_Top\n  [Note(\"m\")] uint32 M()\n    [Note(\"q\")] string P\n");
    EXPECT_EQ(declared(top + cimClass("A_Below", "A_Top",
                                      method("x", qualifier("Note", "p", kInherited)))),
              expected + "class A_Below : A_Top\n  [Note(\"x\")] uint32 M()\n    string P\n");
}

TEST(CimXmlClassCollection, PropagatedQualifiersOfAClassComeFromItsSuperclass) {
    EXPECT_EQ(declared(cimClass("A_Top", "", qualifier("Note", "top")) +
                       cimClass("A_Below", "A_Top", qualifier("Note", "top", kInherited)) +
                       cimClass("A_Last", "A_Below", qualifier("Note", "other", kInherited)) +
                       cimClass("A_Alone", "", qualifier("Note", "top", kInherited))),
              "[Note(\"top\")] class A_Top\n"
              "class A_Below : A_Top\n"
              "[Note(\"other\")] class A_Last : A_Below\n"
              "[Note(\"top\")] class A_Alone\n");
}

// A class is not what its superclass's superclass was, and under LocalOnly=true the superclass
// lists nothing that it does not declare.
TEST(CimXmlClassCollection, TheNearestSuperclassThatListsAMemberCounts) {
    EXPECT_EQ(declared(kTop + cimClass("A_Between", "A_Top", "") +
                       cimClass("A_Below", "A_Between",
                                property("P", qualifier("Note", "top"), kInherited))),
              "class A_Top\n  [Note(\"top\")] string P\n"
              "class A_Between : A_Top\nclass A_Below : A_Between\n");
    EXPECT_EQ(
        declared(
            kTop + cimClass("A_Between", "A_Top", property("P", qualifier("Note", "x"))) +
            cimClass("A_Below", "A_Between", property("P", qualifier("Note", "top"), kInherited))),
        "class A_Top\n  [Note(\"top\")] string P\n"
        "class A_Between : A_Top\n  [Note(\"x\")] string P\n"
        "class A_Below : A_Between\n  [Note(\"top\")] string P\n");
}

TEST(CimXmlClassCollection, WhatNoSuperclassListsIsTheClassesOwn) {
    EXPECT_EQ(declared(cimClass("A_B", "", property("P", "", kInherited))),
              "class A_B\n  string P\n");
}

// A server could send as many as fit into a class.
TEST(CimXmlClassCollection, ManyQualifiersAndParametersTakeTimeByTheirNumber) {
    constexpr int kCount = 3000;
    std::string qualifiers;
    std::string parameters;
    for (int number = 0; number < kCount; ++number) {
        qualifiers += qualifier("Q" + std::to_string(number), "x", kInherited);
        parameters += "<PARAMETER NAME=\"P" + std::to_string(number) + "\" TYPE=\"string\">" +
                      qualifier("Note", "x", kInherited) + "</PARAMETER>";
    }
    const auto classOf = [&](const char* name, const char* superclass, const char* value) {
        return cimClass(name, superclass,
                        property("P", qualifiers + qualifier("Mine", value), kInherited) +
                            "<METHOD NAME=\"M\" TYPE=\"uint8\" PROPAGATED=\"true\">" +
                            qualifier("Mine", value) + parameters + "</METHOD>");
    };
    CimXml::Limits limits;
    limits.maxClassSize = std::size_t{16} << 20U;
    Collected collected(kNoteAndMine, limits);
    collected.classes(classOf("A_Top", "", "x") + classOf("A_Below", "A_Top", "y"));
    const std::string text = collected.text();
    EXPECT_NE(
        text.find("class A_Below : A_Top\n  [Mine(\"y\")] string P\n  [Mine(\"y\")] uint8 M()\n"
                  "    string P0\n    string P1\n"),
        std::string::npos);
}

// What cannot be used.

TEST(CimXmlClassCollection, AClassThatCannotBeUsedIsLeftOutWithItsSubclasses) {
    EXPECT_EQ(
        declared(cimClass("A_Below", "A_Odd", "") +
                 cimClass("A_Odd", "", "<PROPERTY NAME=\"P\" TYPE=\"odd\"/>") +
                 cimClass("A_Lost", "A_Gone", "") + cimClass("A_Fine", "", "")),
        "class A_Fine\n"
        "http://host:5988: root/test: A_Odd.P: warning: the type \"odd\" is unknown; the class "
        "is left out with its 1 subclass\n"
        "http://host:5988: root/test: A_Lost: warning: the superclass \"A_Gone\" of \"A_Lost\" "
        "is not declared; the class is left out\n");
}

TEST(CimXmlClassCollection, ACycleOfSuperclassesIsLeftOut) {
    const std::string member = property("P", qualifier("Note", "x"), kInherited);
    EXPECT_EQ(declared(cimClass("A_One", "A_Two", member) +
                       cimClass("A_Two", "A_One", property("P", "", kInherited)) +
                       cimClass("A_Self", "A_Self", member) + cimClass("A_Fine", "", "")),
              "class A_Fine\n"
              "http://host:5988: root/test: A_One: warning: the class \"A_One\" is its own "
              "superclass, by way of \"A_Two\"; the class is left out with its 1 subclass\n"
              "http://host:5988: root/test: A_Self: warning: the class \"A_Self\" is its own "
              "superclass; the class is left out\n");
}

TEST(CimXmlClassCollection, OfAClassThatIsSentTwiceTheFirstCounts) {
    EXPECT_EQ(declared(cimClass("A_B", "", property("P", "")) + cimClass("a_b", "", "")),
              "class A_B\n  string P\n"
              "http://host:5988: root/test: A_B: warning: the server has sent the class twice, the "
              "first counts\n");
}

TEST(CimXmlClassCollection, AClassNeedsAName) {
    EXPECT_EQ(
        declared(cimClass("../A", "", "") + "<CLASS/>"),
        "http://host:5988: root/test: warning: \"../A\" is not a name; the class is left out\n"
        "http://host:5988: root/test: warning: \"\" is not a name; the class is left out\n");
}

TEST(CimXmlClassCollection, AClassWithANameThatIsReservedInMofIsLeftOut) {
    EXPECT_EQ(declared(cimClass("Uint8", "", "") + cimClass("B", "uint8", "")),
              "http://host:5988: root/test: Uint8: warning: the word \"Uint8\" is reserved in MOF, "
              "so it cannot be a name; the class is left out with its 1 subclass\n");
}

TEST(CimXmlClassCollection, AnythingElseAmongTheResultsIsRefused) {
    EXPECT_THROW(Collected().classes("<CLASSNAME NAME=\"A\"/>"), ServerError);
    EXPECT_THROW(Collected("<CLASS NAME=\"A\"/>"), ServerError);
}

TEST(CimXmlClassCollection, LimitsWhatAllClassesHaveTogether) {
    CimXml::Limits limits;
    limits.maxElements = 5;
    // Two qualifiers with their values; the inherited member counts once.
    const std::string classes =
        kTop + cimClass("A_Below", "A_Top", property("P", qualifier("Note", "top"), kInherited));
    EXPECT_NO_THROW(
        Collected("", limits).classes(classes + cimClass("A_Q", "", qualifier("Q", "x"))));
    try {
        Collected("", limits)
            .classes(classes + cimClass("A_Q", "", qualifier("Q", "x") + "<QUALIFIER/>"));
        FAIL();
    } catch (const ServerError& error) {
        EXPECT_EQ(error.kind(), ServerError::Kind::kLimit);
        EXPECT_EQ(error.getMessage(),
                  "the classes have more than 5 properties, methods, parameters, qualifiers and "
                  "values");
    }
}

// Choosing classes.

TEST(CimXmlClassCollection, SuperclassesComeAlongWithWhatIsChosen) {
    Collected collected;
    collected.classes(cimClass("B_Child", "A_Top", "") + cimClass("A_Top", "", "") +
                      cimClass("A_Other", "A_Top", "") + cimClass("C_One", "B_Child", ""));
    EXPECT_EQ(collected.text({"b_*"}), "class B_Child : A_Top\nclass A_Top\n");
    EXPECT_EQ(collected.text({"C_?ne", "A_Other"}),
              "class B_Child : A_Top\nclass A_Top\nclass A_Other : A_Top\nclass C_One : B_Child\n");
    EXPECT_EQ(collected.text({"A_Top", "X_*"}),
              "class A_Top\n"
              "http://host:5988: root/test: warning: no class fits \"X_*\"\n");
}

// Changes.

TEST(CimXmlClassCollection, TheDigestTellsOfChangesWhateverTheOrder) {
    const auto digestOf = [](const std::string& classes, const std::string& qualifiers = "") {
        return Collected(qualifiers).classes(classes).collection().digest();
    };
    const std::string other = cimClass("A_Other", "", "");
    EXPECT_EQ(digestOf(kTop + other), digestOf(other + kTop));
    EXPECT_NE(digestOf(kTop), digestOf(kTop + other));
    EXPECT_NE(digestOf(kTop),
              digestOf(cimClass("A_Top", "", property("P", qualifier("Note", "x")))));
    EXPECT_NE(digestOf(kTop), digestOf(kTop, kNoteAndMine));
}

}  // namespace

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

#include "ObjectManager/Pages/ClassPicture.h"
#include "Tests/Support/MofModel.h"

namespace {

// The texts of a picture in their order, from top to bottom, with the links in brackets.
std::string textsOf(const std::string& picture) {
    const std::regex text(
        "(<a href=([^>]*)>)?(<rect[^>]*>)?<text class=([a-z]+)[^>]*>([^<]*)</text>");
    std::string texts;
    for (std::sregex_iterator match(picture.begin(), picture.end(), text), end; match != end;
         ++match) {
        texts += (texts.empty() ? "" : " ") + (*match)[5].str();
        if ((*match)[2].matched)
            texts += "(" + (*match)[2].str() + ")";
    }
    return texts;
}

class ClassPictureTest : public testing::Test {
  protected:
    [[nodiscard]] static std::string pictureOf(const std::string& mof, const char* name,
                                               Pages::Layout layout = Pages::Layout::kServed) {
        const MofModel model(mof);
        const Pages::ClassRelations relations(model.nameSpace());
        return Pages::pictureOf(model.cimClass(name), relations, layout);
    }
};

TEST_F(ClassPictureTest, ShowsWhatAClassExtendsAndWhatExtendsIt) {
    const char* const mof = "class A {}; class B : A {}; class C : B {}; class D : B {};";
    EXPECT_EQ(textsOf(pictureOf(mof, "B")), "A(A) B(B) C(C) D(D)");
    EXPECT_EQ(textsOf(pictureOf(mof, "A", Pages::Layout::kExported)), "A(A.html) B(B.html)");
}

TEST_F(ClassPictureTest, ShowsTheAssociationsOfAClassAndItsSuperclassesWithTheOtherEnds) {
    const char* const mof = R"(
        class A {}; class B : A {}; class C {};
        [Association] class OfA { [Key] A REF Mine; [Key] C REF Other; };
        [Association] class OfB { [Key] B REF Mine; [Key] C REF Other; [Key] C REF Third; };)";
    EXPECT_EQ(textsOf(pictureOf(mof, "B")),
              "A(A) B(B) B(B) OfB(OfB) Other: C(C) Third: C(C) OfA(OfA) Other: C(C)");
    EXPECT_EQ(textsOf(pictureOf(mof, "OfA")), "OfA(OfA) OfA(OfA) Mine: A(A) Other: C(C)");
}

TEST_F(ClassPictureTest, AClassWithoutAssociationsHasOnePicture) {
    const std::string picture = pictureOf("class A {};", "A");
    EXPECT_EQ(picture.find("<svg"), picture.rfind("<svg"));
}

TEST_F(ClassPictureTest, StaysSmall) {
    std::string mof = "class A {};\n";
    for (int number = 10; number < 31; ++number) {
        const std::string name = "S" + std::to_string(number);
        mof += "class " + name + " : A {};\n[Association] class L" + name +
               " { [Key] A REF One; [Key] " + name + " REF Other; };\n";
    }
    const std::string texts = textsOf(pictureOf(mof, "A"));
    EXPECT_NE(texts.find("S18(S18) and 12 more A(A)"), std::string::npos) << texts;
    EXPECT_TRUE(texts.ends_with("LS15(LS15) Other: S15(S15) and 15 more")) << texts;

    std::string chain = "class A10 {};\n";
    for (int number = 11; number < 31; ++number)
        chain +=
            "class A" + std::to_string(number) + " : A" + std::to_string(number - 1) + " {};\n";
    EXPECT_TRUE(textsOf(pictureOf(chain, "A30")).starts_with("and 11 more above A21(A21)"));
}

// Nothing reaches beyond the picture, and what does not fit is made narrower.
TEST_F(ClassPictureTest, IsAsWideAsAPhoneWhateverTheNames) {
    const std::string word(150, 'x');
    const std::string picture = pictureOf(
        "class " + word + " {}; class B : " + word + " {};\n[Association] class A" + word +
            " { [Key] B REF Role" + word + "; [Key] " + word + " REF Other" + word + "; };",
        "B");
    const std::regex extent(" x=([0-9]+) y=[0-9]+ (?:width|textLength)=([0-9]+)");
    int count = 0;
    for (std::sregex_iterator match(picture.begin(), picture.end(), extent), end; match != end;
         ++match, ++count)
        EXPECT_LE(std::stoi((*match)[1]) + std::stoi((*match)[2]), 360);
    EXPECT_EQ(count, 16);
    EXPECT_EQ(picture.find(std::string(61, 'x') + "…"), std::string::npos);
}

}  // namespace

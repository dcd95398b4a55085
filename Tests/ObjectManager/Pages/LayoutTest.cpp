#include <gtest/gtest.h>

#include "ObjectManager/Pages/Layout.h"

namespace {

using Pages::Layout;

TEST(Layout, TheIndexLeadsToPagesAndDocuments) {
    EXPECT_EQ(Pages::pathOfClassPage(Layout::kServed, "root/a", "A"), "-/root/a/A");
    EXPECT_EQ(Pages::pathOfClassPage(Layout::kExported, "root/a", "A"), "root/a/A.html");
    EXPECT_EQ(Pages::pathOfDocument("root/a", "A"), "root/a/A");
    EXPECT_EQ(Pages::pathOfArchive("root/a b"), "-/root/a%20b.zip");
}

TEST(Layout, APageLeadsToTheTopAndToItsNeighbours) {
    EXPECT_EQ(Pages::wayToTop(Layout::kServed, "root/a"), "../../../");
    EXPECT_EQ(Pages::wayToTop(Layout::kExported, "root/a"), "../../");
    EXPECT_EQ(Pages::wayToTop(Layout::kExported, "a"), "../");
    EXPECT_EQ(Pages::siblingPage(Layout::kServed, "A"), "A");
    EXPECT_EQ(Pages::siblingPage(Layout::kExported, "A"), "A.html");
    EXPECT_EQ(Pages::pathOfIndex(Layout::kServed), "");
    EXPECT_EQ(Pages::pathOfIndex(Layout::kExported), "index.html");
}

TEST(Layout, NamesAreEncoded) {
    EXPECT_EQ(Pages::pathOfClassPage(Layout::kServed, "a b/<", "\"?#"), "-/a%20b/%3C/%22%3F%23");
    EXPECT_EQ(Pages::pathOfDocument("java script:", "'"), "java%20script%3A/%27");
    EXPECT_EQ(Pages::siblingPage(Layout::kExported, "javascript:a>"), "javascript%3Aa%3E.html");
}

}  // namespace

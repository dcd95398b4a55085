#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Index/PercentEncoding.h"

namespace {

using Index::percentEncodedPath;

TEST(PercentEncoding, PathsOfClassesStayAsTheyAre) {
    EXPECT_EQ(percentEncodedPath("root/cimv2/CIM_Foo-1.0~x"), "root/cimv2/CIM_Foo-1.0~x");
    EXPECT_EQ(percentEncodedPath(""), "");
}

TEST(PercentEncoding, EverythingElseIsEncoded) {
    EXPECT_EQ(percentEncodedPath("a b"), "a%20b");
    EXPECT_EQ(percentEncodedPath("<>\"'`=&?#%:"), "%3C%3E%22%27%60%3D%26%3F%23%25%3A");
    EXPECT_EQ(percentEncodedPath("Größe"), "Gr%C3%B6%C3%9Fe");
    EXPECT_EQ(percentEncodedPath(std::string("\0\xFF", 2)), "%00%FF");
}

}  // namespace

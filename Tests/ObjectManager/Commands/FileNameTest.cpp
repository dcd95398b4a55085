#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Commands/FileName.h"

namespace {

using Commands::faultOfFileName;
using namespace std::string_view_literals;

TEST(FileName, NamesOfClassesAndTheirDocumentsAreFine) {
    for (const std::string_view name :
         {"CIM_Foo", "CIM_Foo.wsdl", "a", "...", ".a", "..a", "Größe"})
        EXPECT_EQ(faultOfFileName(name), "") << name;
}

TEST(FileName, ANameThatLeadsElsewhereIsNone) {
    EXPECT_EQ(faultOfFileName(""), "is empty");
    EXPECT_EQ(faultOfFileName("."), "is \".\"");
    EXPECT_EQ(faultOfFileName(".."), "is \"..\"");
    EXPECT_EQ(faultOfFileName("../CIM_Foo"), "holds a \"/\"");
    EXPECT_EQ(faultOfFileName("/"), "holds a \"/\"");
    EXPECT_EQ(faultOfFileName("CIM_Foo\0.xsd"sv), "holds a zero byte");
}

TEST(FileName, ANameHas255BytesAtMost) {
    EXPECT_EQ(faultOfFileName(std::string(255, 'a')), "");
    EXPECT_EQ(faultOfFileName(std::string(256, 'a')), "is longer than 255 bytes");
}

}  // namespace

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Classes/ClassListing.h"
#include "Tests/Support/MofModel.h"

namespace {

using Commands::OutputFormat;

const char* const kMof = R"(
class TST_Base {
  [Key] string Name;
  [Required] uint16 Codes[];
  uint32 Stop([In, Required] boolean Force, [In(false), Out] TST_Base ref Done[]);
};
class TST_Sub : TST_Base {
  datetime When;
  [Key(false)] uint8 Kind = 3;
  uint32 Go();
};
[Association]
class TST_Link {
  [Key] TST_Base ref From;
  [Key] TST_Sub ref To;
};
)";

std::string listed(const MofModel& model, OutputFormat format) {
    return Commands::listClasses({&model.nameSpace()}, format);
}

std::string described(const MofModel& model, const char* name, OutputFormat format) {
    return Commands::describeClass(model.nameSpace(), model.cimClass(name), format);
}

TEST(ClassListing, ListsClassesWithTheirSuperclasses) {
    EXPECT_EQ(listed(MofModel(kMof), OutputFormat::kText),
              "root/test  (3 classes)\n"
              "  TST_Base\n"
              "  TST_Link\n"
              "  TST_Sub : TST_Base\n");
}

TEST(ClassListing, ListsSeveralNamespaces) {
    const MofModel one("class TST_A {};");
    const MofModel none("");
    EXPECT_EQ(Commands::listClasses({&one.nameSpace(), &none.nameSpace()}, OutputFormat::kText),
              "root/test  (1 class)\n"
              "  TST_A\n"
              "root/test  (0 classes)\n");
    EXPECT_EQ(Commands::listClasses({}, OutputFormat::kText), "");
}

TEST(ClassListing, ListsClassesAsJson) {
    EXPECT_EQ(listed(MofModel("class TST_A {}; class TST_B : TST_A {};"), OutputFormat::kJson),
              R"({
  "namespaces": [
    {
      "name": "root/test",
      "classes": [
        {
          "name": "TST_A",
          "superclass": ""
        },
        {
          "name": "TST_B",
          "superclass": "TST_A"
        }
      ]
    }
  ]
}
)");
    EXPECT_EQ(Commands::listClasses({}, OutputFormat::kJson), "{\n  \"namespaces\": []\n}\n");
}

TEST(ClassListing, DescribesAClass) {
    const MofModel model(kMof);
    EXPECT_EQ(described(model, "TST_Base", OutputFormat::kText),
              "root/test:TST_Base\n"
              "\n"
              "2 properties\n"
              "  [Required] uint16[] Codes\n"
              "  [Key] string Name\n"
              "\n"
              "1 method\n"
              "  uint32 Stop([In, Required] boolean Force, [Out] TST_Base ref[] Done)\n");
    EXPECT_EQ(described(model, "TST_Link", OutputFormat::kText),
              "root/test:TST_Link\n"
              "\n"
              "2 properties\n"
              "  [Key] TST_Base ref From\n"
              "  [Key] TST_Sub ref To\n"
              "\n"
              "0 methods\n");
}

TEST(ClassListing, SaysWhereInheritedMembersComeFrom) {
    EXPECT_EQ(described(MofModel(kMof), "TST_Sub", OutputFormat::kText),
              "root/test:TST_Sub : TST_Base\n"
              "\n"
              "4 properties\n"
              "  [Required] uint16[] Codes  (TST_Base)\n"
              "  uint8 Kind\n"
              "  [Key] string Name  (TST_Base)\n"
              "  datetime When\n"
              "\n"
              "2 methods\n"
              "  uint32 Stop([In, Required] boolean Force, [Out] TST_Base ref[] Done)  (TST_Base)\n"
              "  uint32 Go()\n");
}

TEST(ClassListing, DescribesAClassAsJson) {
    EXPECT_EQ(described(MofModel("class TST_A { [Key] string Name; };\n"
                                 "class TST_B : TST_A {\n"
                                 "  [Required] uint16 Codes[];\n"
                                 "  uint32 Go([In, Required] TST_A ref A, [Out] string B[]);\n"
                                 "  uint8 Stop();\n"
                                 "};"),
                        "TST_B", OutputFormat::kJson),
              R"({
  "namespace": "root/test",
  "name": "TST_B",
  "superclass": "TST_A",
  "properties": [
    {
      "name": "Codes",
      "type": "uint16[]",
      "key": false,
      "required": true,
      "declaredBy": "TST_B"
    },
    {
      "name": "Name",
      "type": "string",
      "key": true,
      "required": false,
      "declaredBy": "TST_A"
    }
  ],
  "methods": [
    {
      "name": "Go",
      "returnType": "uint32",
      "parameters": [
        {
          "name": "A",
          "type": "TST_A ref",
          "in": true,
          "out": false,
          "required": true
        },
        {
          "name": "B",
          "type": "string[]",
          "in": false,
          "out": true,
          "required": false
        }
      ],
      "declaredBy": "TST_B"
    },
    {
      "name": "Stop",
      "returnType": "uint8",
      "parameters": [],
      "declaredBy": "TST_B"
    }
  ]
}
)");
}

TEST(ClassListing, DescribesAClassOfNothingAsJson) {
    EXPECT_EQ(described(MofModel("class TST_A {};"), "TST_A", OutputFormat::kJson),
              "{\n"
              "  \"namespace\": \"root/test\",\n"
              "  \"name\": \"TST_A\",\n"
              "  \"superclass\": \"\",\n"
              "  \"properties\": [],\n"
              "  \"methods\": []\n"
              "}\n");
}

// Names of MOF are any bytes, but JSON is UTF-8.
TEST(ClassListing, ReplacesWhatJsonCannotHold) {
    EXPECT_NE(listed(MofModel("class TST_\xC3\xA9 {};"), OutputFormat::kJson)
                  .find("\"name\": \"TST_\xC3\xA9\""),
              std::string::npos);
}

}  // namespace

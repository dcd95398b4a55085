#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "ObjectManager/Pages/SearchData.h"
#include "Tests/Support/MofModel.h"

namespace {

TEST(SearchData, HasEachMemberAtTheClassThatDeclaresIt) {
    const MofModel model(R"(
        [Description ("A thing.")] class TST_Thing { [Description ("Its name.")] string Name; uint8 Size; };
        class TST_Disk : TST_Thing { [Description ("Turns.")] uint32 Turn (); };)");
    EXPECT_EQ(Pages::makeSearchData(*model.repository(), Pages::Layout::kServed),
              R"(teskClasses({"suffix":"","namespaces":[
{"name":"root/test","pages":"-/root/test/","classes":[
["TST_Disk","TST_Thing","",[["Turn",1,"Turns."]]],
["TST_Thing","","A thing.",[["Name",0,"Its name."],["Size",0,""]]]]}]});
)");
}

TEST(SearchData, ExportedPagesAreFiles) {
    const MofModel model("class A {};");
    EXPECT_EQ(Pages::makeSearchData(*model.repository(), Pages::Layout::kExported),
              "teskClasses({\"suffix\":\".html\",\"namespaces\":[\n"
              "{\"name\":\"root/test\",\"pages\":\"root/test/\",\"classes\":[\n"
              "[\"A\",\"\",\"\",[]]]}]});\n");
    EXPECT_EQ(Pages::makeSearchData(Repository::ClassRepository({}), Pages::Layout::kServed),
              "teskClasses({\"suffix\":\"\",\"namespaces\":[]});\n");
}

TEST(SearchData, TextsAreLiterals) {
    EXPECT_EQ(Pages::scriptText("a\"\\\n</script>\xE2\x80\xA8\xE2\x80\xA9\x7F"),
              R"("a\u0022\u005c\u000a\u003c/script>\u2028\u2029\u007f")");
    EXPECT_EQ(Pages::scriptText("Größe \xF0\x9F\x98\x80"), "\"Größe \xF0\x9F\x98\x80\"");
    EXPECT_EQ(Pages::scriptText("\xFF\xC3"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\"");
    EXPECT_EQ(Pages::scriptText(""), "\"\"");
}

// Whatever a model says.
TEST(SearchData, IsDataAndNothingElse) {
    const MofModel model("[Description (\"\\\"]]]});alert(1)//'`${}\\n\\\\\")] class A {};");
    const std::string data = Pages::makeSearchData(*model.repository(), Pages::Layout::kServed);
    const std::string argument = data.substr(12, data.size() - 12 - 3);
    EXPECT_EQ(nlohmann::json::parse(argument)["namespaces"][0]["classes"][0][2],
              "\"]]]});alert(1)//'`${}\n\\");
}

}  // namespace

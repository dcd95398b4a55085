// `tesk classes` as its users run it.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using nlohmann::json;

std::string outputOf(const std::string& arguments) {
    const ProgramRun run = runTesk(arguments);
    EXPECT_EQ(run.end, "status 0") << arguments;
    EXPECT_EQ(run.errors, "") << arguments;
    return run.output;
}

TEST(ClassesCommand, ListsAllNamespaces) {
    const std::string output = outputOf("classes");
    EXPECT_TRUE(
        output.starts_with("root/cimv2  (38 classes)\n"
                           "  CIM_AlertIndication : CIM_ProcessIndication\n"
                           "  CIM_AllocatedFromStoragePool : CIM_Dependency\n"
                           "  CIM_Component\n"))
        << output;
    EXPECT_NE(output.find("\ninterop  (21 classes)\n  CIM_Component\n"), std::string::npos)
        << output;
}

TEST(ClassesCommand, ListsOneNamespaceInAnyCase) {
    const std::string all = outputOf("classes");
    const std::string interop = outputOf("classes interop");
    EXPECT_EQ(interop, all.substr(all.find("interop  (")));
    EXPECT_EQ(outputOf("classes InterOp"), interop);
}

// As --namespace does, and as the paths of documents have them.
TEST(ClassesCommand, TakesSlashesAroundANamespace) {
    EXPECT_EQ(outputOf("classes /interop/"), outputOf("classes interop"));
    EXPECT_EQ(outputOf("classes /root/cimv2/ CIM_System"),
              outputOf("classes root/cimv2 CIM_System"));
    EXPECT_EQ(runTesk("classes /root/acme/").errors,
              "tesk: there is no namespace \"root/acme\"; there are: root/cimv2, interop\n");
}

TEST(ClassesCommand, DescribesOneClassInAnyCase) {
    const std::string output = outputOf("classes root/cimv2 CIM_System");
    EXPECT_EQ(outputOf("classes Root/CIMV2 cim_SYSTEM"), output);
    EXPECT_TRUE(
        output.starts_with("root/cimv2:CIM_System : CIM_EnabledLogicalElement\n"
                           "\n"))
        << output;
    EXPECT_NE(output.find("\n  [Key] string CreationClassName\n"), std::string::npos) << output;
    EXPECT_NE(output.find("\n  string Caption  (CIM_ManagedElement)\n"), std::string::npos)
        << output;
    EXPECT_NE(output.find("\n  uint32 RequestStateChange([In] uint16 RequestedState, [Out] "
                          "CIM_ConcreteJob ref Job, [In] datetime TimeoutPeriod)  "
                          "(CIM_EnabledLogicalElement)\n"),
              std::string::npos)
        << output;
}

TEST(ClassesCommand, WritesJsonForPrograms) {
    const json all = json::parse(outputOf("classes --format json"));
    ASSERT_EQ(all["namespaces"].size(), 2U);
    EXPECT_EQ(all["namespaces"][0]["name"], "root/cimv2");
    EXPECT_EQ(all["namespaces"][0]["classes"].size(), 38U);
    EXPECT_EQ(all["namespaces"][0]["classes"][0],
              json({{"name", "CIM_AlertIndication"}, {"superclass", "CIM_ProcessIndication"}}));

    const json interop = json::parse(outputOf("classes --format json interop"));
    EXPECT_EQ(interop["namespaces"], json::array({all["namespaces"][1]}));

    const json system = json::parse(outputOf("classes root/cimv2 cim_system --format json"));
    EXPECT_EQ(system["name"], "CIM_System");
    EXPECT_EQ(system["superclass"], "CIM_EnabledLogicalElement");
    EXPECT_EQ(system["properties"][1], json({{"name", "Caption"},
                                             {"type", "string"},
                                             {"key", false},
                                             {"required", false},
                                             {"declaredBy", "CIM_ManagedElement"}}));
}

TEST(ClassesCommand, ListsTheClassesOfGivenFiles) {
    const TemporaryDirectory directory;
    const std::string file = directory.write("a.mof", "class TST_B : TST_A {}; class TST_A {};");
    EXPECT_EQ(outputOf("classes --namespace root/acme='" + file + "'"),
              "root/acme  (2 classes)\n"
              "  TST_A\n"
              "  TST_B : TST_A\n");
    EXPECT_EQ(outputOf("classes --namespace root/acme='" + file + "' root/acme TST_A"),
              "root/acme:TST_A\n"
              "\n"
              "0 properties\n"
              "\n"
              "0 methods\n");
}

TEST(ClassesCommand, NamesTheNamespacesWhenThereIsNoSuch) {
    for (const char* const arguments : {"classes root/acme", "classes root/acme CIM_System"}) {
        const ProgramRun run = runTesk(arguments);
        EXPECT_EQ(run.end, "status 1");
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors,
                  "tesk: there is no namespace \"root/acme\"; there are: root/cimv2, interop\n");
    }
}

TEST(ClassesCommand, SaysWhereClassesAreListedWhenThereIsNoSuch) {
    const ProgramRun run = runTesk("classes ROOT/cimv2 CIM_Nothing");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              "tesk: the namespace \"root/cimv2\" has no class \"CIM_Nothing\"; \"tesk classes "
              "root/cimv2\" lists them\n");
}

TEST(ClassesCommand, ShowsNothingOfClassesWithErrors) {
    const TemporaryDirectory directory;
    const std::string file = directory.write("a.mof", "class TST_A {};\nclass TST_B : TST_C {};\n");
    const ProgramRun run = runTesk("classes --namespace root/acme='" + file + "'");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              file +
                  ":2:15: error: the superclass \"TST_C\" of \"TST_B\" is not declared\n"
                  "class TST_B : TST_C {};\n"
                  "              ^\n"
                  "tesk: the classes have errors and are not used\n");
}

}  // namespace

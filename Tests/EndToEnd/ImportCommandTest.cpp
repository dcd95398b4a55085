// The real program: tesk import.

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/ObjectManager/CimXml/Messages.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/StandInServer.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kQualifiers =
    "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
    "<SCOPE PROPERTY=\"true\" REFERENCE=\"true\"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>";
constexpr const char* kItem =
    "<CLASS NAME=\"T_Item\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" "
    "TYPE=\"boolean\" OVERRIDABLE=\"false\"><VALUE>true</VALUE></QUALIFIER></PROPERTY></CLASS>";
constexpr const char* kDisk = "<CLASS NAME=\"T_Disk\" SUPERCLASS=\"T_Item\"></CLASS>";
constexpr const char* kItemMof = "class T_Item\n{\n    [Key]\n    string Id;\n};\n";
constexpr const char* kMainOfBoth =
    "// All classes, each after its superclass.\n"
    "#pragma include (\"qualifiers.mof\")\n"
    "#pragma include (\"T_Item.mof\")\n"
    "#pragma include (\"T_Disk.mof\")\n";

class ImportTest : public testing::Test {
  protected:
    ImportTest() {
        responses_["EnumerateQualifiers root/test"] = kQualifiers;
        responses_["EnumerateClasses root/test"] = std::string(kDisk) + kItem;
        responses_["EnumerateQualifiers root/empty"] = "";
        responses_["EnumerateClasses root/empty"] = "";
        responses_["EnumerateInstanceNames interop"] =
            namespaceNamed("root/test") + namespaceNamed("root/empty");
    }

    static std::string namespaceNamed(const std::string& name) {
        return "<INSTANCENAME CLASSNAME=\"CIM_Namespace\"><KEYBINDING NAME=\"Name\"><KEYVALUE "
               "VALUETYPE=\"string\">" +
               name + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
    }

    // Without the time that it took, and with "SERVER" and "OUT" for the server and the directory.
    [[nodiscard]] ProgramRun runImport(const std::string& arguments) const {
        const StandInServer server([this](const StandInServer::Request& request) {
            const std::string operation = request.field("CIMMethod");
            const auto found = responses_.find(operation + " " + request.field("CIMObject"));
            return StandInServer::ok(found == responses_.end()
                                         ? errorResponseTo(operation, "6", "none")
                                         : responseTo(operation, found->second));
        });
        ProgramRun run =
            runTesk("import --server " + server.url() + " --output '" + out() + "' " + arguments);
        run.output = withoutTime(run.output);
        run.errors = replaced(replaced(run.errors, server.url(), "SERVER"), out(), "OUT");
        return run;
    }

    [[nodiscard]] std::string out() const { return directory_ / "out"; }

    // The files, without the lists.
    [[nodiscard]] DirectoryContent files() const {
        DirectoryContent content;
        if (fs::exists(out()))
            content = contentOf(out());
        std::erase_if(content, [](const auto& file) {
            return file.second == "(directory)" ||
                   fs::path(file.first).filename() == ".tesk-import";
        });
        return content;
    }

    std::map<std::string, std::string> responses_;
    TemporaryDirectory directory_;
};

TEST_F(ImportTest, WritesTheClassesOfANamespace) {
    const ProgramRun run = runImport("--namespace root/test");
    EXPECT_EQ(run.end, "status 0") << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output,
              "2 classes in 1 namespace, 4 files, 325 bytes, TIME: 4 written, 0 unchanged, 0 "
              "removed\n");
    EXPECT_EQ(files(), (DirectoryContent{{"root/test/T_Disk.mof", "class T_Disk : T_Item\n{\n};\n"},
                                         {"root/test/T_Item.mof", kItemMof},
                                         {"root/test/main.mof", kMainOfBoth},
                                         {"root/test/qualifiers.mof",
                                          "// All qualifiers.\n"
                                          "Qualifier Key : boolean = false,\n"
                                          "    Scope (property, reference),\n"
                                          "    Flavor (DisableOverride);\n"}}));
    const ProgramRun check =
        runTesk("check --namespace root/test='" + out() + "/root/test/main.mof'");
    EXPECT_EQ(check.end, "status 0") << check.output;
}

TEST_F(ImportTest, WritesAllNamespacesThatTheServerNames) {
    const ProgramRun run = runImport("");
    EXPECT_EQ(run.end, "status 0") << run.errors;
    EXPECT_EQ(files().count("root/test/T_Disk.mof"), 1U);
    EXPECT_EQ(files().count("root/empty/main.mof"), 1U);
    EXPECT_EQ(files().size(), 6U);
}

TEST_F(ImportTest, WritesANamespaceUnderAnotherName) {
    EXPECT_EQ(runImport("--namespace other=root/test").end, "status 0");
    EXPECT_EQ(files().count("other/T_Disk.mof"), 1U);
}

TEST_F(ImportTest, ImportedAgainNothingChanges) {
    (void)runImport("--namespace root/test");
    const auto past = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const auto& [name, text] : files())
        fs::last_write_time(fs::path(out()) / name, past);
    EXPECT_EQ(runImport("--namespace root/test --prune").output,
              "2 classes in 1 namespace, 4 files, 325 bytes, TIME: 0 written, 4 unchanged, 0 "
              "removed\n");
    for (const auto& [name, text] : files())
        EXPECT_EQ(fs::last_write_time(fs::path(out()) / name), past) << name;
}

TEST_F(ImportTest, AClassThatIsGoneIsPruned) {
    (void)runImport("--namespace root/test");
    responses_["EnumerateClasses root/test"] = kItem;
    EXPECT_EQ(runImport("--namespace root/test").end, "status 0");
    EXPECT_EQ(files().count("root/test/T_Disk.mof"), 1U);
    EXPECT_EQ(runImport("--namespace root/test --prune").output,
              "1 class in 1 namespace, 3 files, 267 bytes, TIME: 0 written, 3 unchanged, 1 "
              "removed\n");
    EXPECT_EQ(files().count("root/test/T_Disk.mof"), 0U);
}

TEST_F(ImportTest, SuperclassesComeAlongWithTheClassesThatAreChosen) {
    responses_["EnumerateClasses root/test"] += "<CLASS NAME=\"T_Other\"></CLASS>";
    EXPECT_EQ(runImport("'t_d*'").end, "status 0");
    EXPECT_EQ(files()["root/test/main.mof"], kMainOfBoth);
    // A namespace without such a class is none of the import.
    EXPECT_EQ(files().size(), 4U);
}

TEST_F(ImportTest, ANameThatFitsNoClassIsAnError) {
    const ProgramRun run = runImport("--namespace root/test T_Disk 'T_None*' X");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors,
              "SERVER: root/test: warning: no class fits \"T_None*\"\n"
              "SERVER: root/test: warning: no class fits \"X\"\n"
              "tesk: the server has no class \"T_None*\", \"X\"; nothing is written\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ImportTest, AClassThatCannotBeUsedIsLeftOutWithAWarning) {
    responses_["EnumerateClasses root/test"] = std::string(kItem) + "<CLASS NAME=\"../T_Out\"/>" +
                                               "<CLASS NAME=\"T_Lost\" SUPERCLASS=\"T_None\"/>";
    const ProgramRun run = runImport("--namespace root/test");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors,
              "SERVER: root/test: warning: \"../T_Out\" is not a name; the class is left out\n"
              "SERVER: root/test: T_Lost: warning: the superclass \"T_None\" of \"T_Lost\" is not "
              "declared; the class is left out\n");
    EXPECT_EQ(files().size(), 3U);
}

TEST_F(ImportTest, AServerThatFailsLeavesEverythingAsItWas) {
    (void)runImport("--namespace root/test");
    const DirectoryContent before = contentOf(out());
    responses_["EnumerateClasses root/test"] = kItem;
    responses_.erase("EnumerateClasses root/empty");
    const ProgramRun run = runImport("--namespace root/test --namespace root/empty --prune");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors,
              "tesk: SERVER: EnumerateClasses of root/empty: CIM_ERR_NOT_FOUND (6): none\n");
    EXPECT_EQ(contentOf(out()), before);
}

TEST_F(ImportTest, NamespacesThatCannotShareTheDirectoryAreRefused) {
    const ProgramRun run =
        runImport("--namespace root=root/test --namespace root/T_Item.mof=root/test");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors,
              "tesk: the namespace \"root/T_Item.mof\" cannot be the path of a directory: the "
              "import has a file \"T_Item.mof\"\n");
    EXPECT_EQ(files(), DirectoryContent());
}

TEST_F(ImportTest, AServerAndADirectoryMustBeGiven) {
    EXPECT_EQ(runTesk("import --output '" + out() + "'").errors,
              "tesk import: --server is required\n\"tesk import --help\" tells more.\n");
    EXPECT_EQ(runTesk("import --server http://localhost").errors,
              "tesk import: --output is required\n\"tesk import --help\" tells more.\n");
}

}  // namespace

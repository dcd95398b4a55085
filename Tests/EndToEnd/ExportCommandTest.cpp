// The real program: tesk export.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <vector>

#include "Tests/EndToEnd/ExportedDocument.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

// Of the sample model: 38 classes of root/cimv2 and 21 of interop.
constexpr std::size_t kSampleDocuments = 118;
// A page for each class, the index page, and what it searches.
constexpr std::size_t kSamplePages = 61;

class ExportTest : public testing::Test {
  protected:
    [[nodiscard]] static std::vector<std::string> command(
        const std::vector<std::string>& arguments) {
        std::vector<std::string> all = {PROGRAM, "export"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }

    [[nodiscard]] ProgramRun runExport(std::vector<std::string> arguments,
                                       const std::function<void()>& prepare = {}) const {
        arguments.insert(arguments.begin(), {"--output", out()});
        return RunningProgram(command(arguments), prepare).waitForEnd();
    }

    [[nodiscard]] std::string out() const { return directory_ / "out"; }
    // Without the lists of documents.
    [[nodiscard]] DirectoryContent content() const {
        DirectoryContent content = contentOf(out());
        std::erase_if(content, [](const auto& file) {
            return fs::path(file.first).filename() == ".tesk-export";
        });
        return content;
    }

    // The files below the directory, without directories.
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& [name, text] : content()) {
            if (text != "(directory)")
                names.push_back(name);
        }
        return names;
    }

    static void expectComplete(const DirectoryContent& all) {
        for (const auto& [name, text] : all) {
            const bool isWhole =
                name.ends_with(".html")
                    ? text.ends_with("</html>\n")
                    : name == "search.js" || text == "(directory)" || isComplete(text);
            EXPECT_TRUE(isWhole) << name;
        }
    }

    TemporaryDirectory directory_;
};

TEST_F(ExportTest, WritesTheSampleModelAndItsPages) {
    const ProgramRun run = runExport({});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(std::regex_match(
        run.output, std::regex("59 classes in 2 namespaces, 118 documents, [0-9.]+ [KM]B, "
                               "[0-9.]+ s: 118 written, 0 unchanged, 0 removed\n")))
        << run.output;
    DirectoryContent all = content();
    EXPECT_EQ(files().size(), kSampleDocuments + kSamplePages);
    EXPECT_NE(all["index.html"].find("href=root/cimv2/CIM_ComputerSystem.html>"),
              std::string::npos);
    EXPECT_NE(all["search.js"].find("\"CIM_ComputerSystem\""), std::string::npos);
    EXPECT_NE(all["root/cimv2/CIM_ComputerSystem.html"].find("http://localhost:5985/wsman"),
              std::string::npos);
    expectComplete(all);
    EXPECT_NE(all["root/cimv2/CIM_ComputerSystem.wsdl"].find("http://localhost:5985/"),
              std::string::npos);
}

TEST_F(ExportTest, ASecondTimeChangesNothing) {
    (void)runExport({});
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1000);
    for (const std::string& name : files())
        fs::last_write_time(fs::path(out()) / name, longAgo);
    const DirectoryContent before = content();
    const ProgramRun run = runExport({"--jobs", "3"});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find(": 0 written, 118 unchanged, 0 removed\n"), std::string::npos)
        << run.output;
    EXPECT_EQ(content(), before);
    for (const std::string& name : files()) {
        EXPECT_LT(fs::last_write_time(fs::path(out()) / name), longAgo + std::chrono::seconds(1))
            << name;
    }
}

TEST_F(ExportTest, NamesAndPatternsSelectClassesAndWriteNoIndex) {
    const ProgramRun run = runExport({"cim_computersystem", "TSK_*"});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find("5 classes in 1 namespace, 10 documents, "), std::string::npos)
        << run.output;
    EXPECT_EQ(files(),
              (std::vector<std::string>{
                  "root/cimv2/CIM_ComputerSystem.wsdl", "root/cimv2/CIM_ComputerSystem.xsd",
                  "root/cimv2/TSK_Diagnostics.wsdl", "root/cimv2/TSK_Diagnostics.xsd",
                  "root/cimv2/TSK_Everything.wsdl", "root/cimv2/TSK_Everything.xsd",
                  "root/cimv2/TSK_Server.wsdl", "root/cimv2/TSK_Server.xsd",
                  "root/cimv2/TSK_StoragePath.wsdl", "root/cimv2/TSK_StoragePath.xsd"}));
}

TEST_F(ExportTest, ANameThatFitsNothingIsAnErrorBeforeAnythingIsWritten) {
    const ProgramRun run = runExport({"CIM_Dependency", "CIM_None", "XYZ_*"});
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              "tesk: there is no class \"CIM_None\", \"XYZ_*\"; \"tesk classes\" lists them\n");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExportTest, TheDocumentsAreThoseOfTheHost) {
    EXPECT_EQ(runExport({"--host", "[2001:db8::1]:80", "TSK_Server"}).end, "status 0");
    EXPECT_NE(content()["root/cimv2/TSK_Server.wsdl"].find("http://[2001:db8::1]:80/"),
              std::string::npos);
}

TEST_F(ExportTest, WrongUsageIsRefused) {
    for (const char* const host :
         {"", "a b", "http://a", "a/b", "a:b", "a:65536", "a<b", "a&b", "user@a", "[::1"}) {
        const ProgramRun run = runExport({"--host", host});
        EXPECT_EQ(run.end, "status 2") << host;
        EXPECT_NE(run.errors.find("\"" + std::string(host) +
                                  "\" is not a host with an optional "
                                  "port, such as localhost:5985"),
                  std::string::npos)
            << run.errors;
    }
    EXPECT_EQ(runExport({"--jobs", "0"}).end, "status 2");
    EXPECT_EQ(runExport({"--prune", "CIM_Dependency"}).end, "status 2");
    EXPECT_EQ(runExport({"--unknown"}).end, "status 2");
    EXPECT_EQ(RunningProgram(command({})).waitForEnd().end, "status 2");
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(ExportTest, TheHelpHasExamples) {
    const ProgramRun run = RunningProgram(command({"--help"})).waitForEnd();
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find("tesk export --output documents"), std::string::npos);
    EXPECT_NE(run.output.find("when a CLASS is given, the pages are left as they are."),
              std::string::npos)
        << run.output;
}

TEST_F(ExportTest, AClassThatCannotBeAFileIsReportedAndTheOthersAreWritten) {
    const std::string fits(250, 'x');
    const std::string isTooLong(251, 'y');
    const std::string mof =
        directory_.write("a.mof", "class " + fits + " {}; class " + isTooLong + " {};");
    const ProgramRun run = runExport({"--namespace", "a=" + mof});
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "a:" + isTooLong + ": " + isTooLong + ".wsdl is longer than 255 bytes\n");
    EXPECT_EQ(files(), (std::vector<std::string>{"a/" + fits + ".html", "a/" + fits + ".wsdl",
                                                 "a/" + fits + ".xsd", "a/" + isTooLong + ".xsd",
                                                 "index.html", "search.js"}));
    EXPECT_NE(run.output.find("2 classes in 1 namespace, 3 documents, "), std::string::npos);
}

TEST_F(ExportTest, PruneRemovesTheDocumentsOfClassesThatAreGone) {
    const std::string two = directory_.write("two.mof", "class A {}; class B {};");
    const std::string one = directory_.write("one.mof", "class A {};");
    (void)runExport({"--namespace", "n=" + two, "--namespace", "n/below=" + two});
    directory_.write("out/n/foreign.xsd", "<xs:schema/>");
    directory_.write("out/B.xsd", contentOfFile(fs::path(out()) / "n/B.xsd"));
    const std::vector<std::string> namespaces = {"--namespace", "n=" + one};
    EXPECT_NE(runExport(namespaces).output.find(", 0 removed"), std::string::npos);
    const ProgramRun run = runExport({"--namespace", "n=" + one, "--prune"});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find(": 0 written, 2 unchanged, 3 removed\n"), std::string::npos)
        << run.output;
    EXPECT_EQ(files(), (std::vector<std::string>{
                           "B.xsd", "index.html", "n/A.html", "n/A.wsdl", "n/A.xsd",
                           "n/below/A.html", "n/below/A.wsdl", "n/below/A.xsd", "n/below/B.html",
                           "n/below/B.wsdl", "n/below/B.xsd", "n/foreign.xsd", "search.js"}));
}

TEST_F(ExportTest, PruneRemovesTheDocumentsUnderTheFormerCaseOfAName) {
    const std::string before = directory_.write("before.mof", "class TST_A {};");
    (void)runExport({"--namespace", "n=" + before});
    const std::string after = directory_.write("after.mof", "class TST_a {};");
    const ProgramRun run = runExport({"--namespace", "n=" + after, "--prune"});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find(": 2 written, 0 unchanged, 3 removed\n"), std::string::npos)
        << run.output;
    EXPECT_EQ(files(), (std::vector<std::string>{"index.html", "n/TST_a.html", "n/TST_a.wsdl",
                                                 "n/TST_a.xsd", "search.js"}));
}

// A shell stands for the export that was killed: its number is that of a process, and free again.
TEST_F(ExportTest, PruneRemovesWhatAKilledExportLeftHalfWritten) {
    const std::string mof = directory_.write("one.mof", "class A {};");
    const std::string leave =
        "mkdir -p \"$0/n\" && for directory in \"$0\" \"$0/n\"; do "
        "echo part > \"$directory/.tesk-export-$$-1\"; done";
    EXPECT_EQ(RunningProgram({"sh", "-c", leave, out()}).waitForEnd().end, "status 0");
    EXPECT_EQ(files().size(), 2U);
    EXPECT_EQ(runExport({"--namespace", "n=" + mof}).end, "status 0");
    EXPECT_EQ(files().size(), 7U);
    const ProgramRun run = runExport({"--namespace", "n=" + mof, "--prune"});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_NE(run.output.find(": 0 written, 2 unchanged, 2 removed\n"), std::string::npos)
        << run.output;
    EXPECT_EQ(files(), (std::vector<std::string>{"index.html", "n/A.html", "n/A.wsdl", "n/A.xsd",
                                                 "search.js"}));
}

TEST_F(ExportTest, ANamespaceWithTheNameOfTheIndexIsRefusedBeforeAnythingIsWritten) {
    const std::string mof = directory_.write("one.mof", "class A {};");
    const ProgramRun run =
        runExport({"--namespace", "n=" + mof, "--namespace", "index.html=" + mof});
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors,
              "tesk: the namespace \"index.html\" cannot be the path of a directory: the export "
              "has a file \"index.html\"\n");
    EXPECT_EQ(content(), DirectoryContent());
}

TEST_F(ExportTest, AFileInPlaceOfTheDirectoryIsAnError) {
    directory_.write("out", "a file");
    const ProgramRun run = runExport({});
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "tesk: cannot make the directory " + out() + ": Not a directory\n");
}

TEST_F(ExportTest, AFileInPlaceOfANamespaceIsAnError) {
    fs::create_directory(out());
    directory_.write("out/root", "a file");
    const ProgramRun run = runExport({});
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "tesk: cannot make the directory " + out() + "/root: Not a directory\n");
    EXPECT_EQ(content(), (DirectoryContent{{"root", "a file"}}));
}

TEST_F(ExportTest, AFileOverTheLimitOfTheProcessIsAnErrorThatLeavesNoPart) {
    const ProgramRun run = runExport({"--jobs", "2"}, [] {
        const rlimit limit = {.rlim_cur = 8192, .rlim_max = 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(std::regex_match(run.errors, std::regex("tesk: cannot write " + out() +
                                                        "/root/cimv2/[A-Za-z_]+\\.[a-z]+"
                                                        ": File too large\n")))
        << run.errors;
    expectComplete(content());
}

// A file system of its own, which is gone with this process.
TEST_F(ExportTest, AFullDiskIsAnErrorThatLeavesNoPart) {
    fs::create_directory(out());
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tesk-test", out().c_str(), "tmpfs", 0, "size=512k") != 0)
        GTEST_SKIP() << "this user may not mount a file system";
    const ProgramRun run = runExport({});
    const DirectoryContent written = content();
    EXPECT_EQ(umount(out().c_str()), 0);
    EXPECT_EQ(run.end, "status 1");
    EXPECT_TRUE(std::regex_match(run.errors, std::regex("tesk: cannot write " + out() +
                                                        "/[A-Za-z_./0-9]+: No space left on "
                                                        "device\n")))
        << run.errors;
    EXPECT_GT(written.size(), 2U);
    expectComplete(written);
}

TEST_F(ExportTest, OutputThatCannotBeWrittenIsAnError) {
    const ProgramRun run =
        runExport({"TSK_Server"}, [] { (void)std::freopen("/dev/full", "w", stdout); });
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "tesk: the output cannot be written\n");
}

TEST_F(ExportTest, TheDmtfSchemaIsWrittenWithoutAFailure) {
    const std::string schema = cimSchemaFile();
    if (schema.empty())
        GTEST_SKIP() << kNoCimSchema;
    const ProgramRun run = runExport({"--namespace", "root/cimv2=" + schema});
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find("1,438 classes in 1 namespace, 2,876 documents, "),
              std::string::npos);
    const DirectoryContent all = content();
    EXPECT_EQ(all.size(), 2876U + 1438 + 2 + 2);
    expectComplete(all);
}

TEST_F(ExportTest, TheDocumentsAreThoseOfThePublishedAddress) {
    const std::string configured =
        directory_.write("tesk.toml", "[server]\npublished_address = 'https://configured:1'\n");
    const auto exported = [&](std::vector<std::string> options) {
        options.emplace_back("TSK_Server");
        EXPECT_EQ(runExport(options).end, "status 0");
        const std::string document = content()["root/cimv2/TSK_Server.wsdl"];
        const std::string mark = "<soap:address location=\"";
        const std::size_t begin = document.find(mark) + mark.size();
        return document.substr(begin, document.find('"', begin) - begin);
    };
    EXPECT_EQ(exported({"--published-address", "https://a:5986"}), "https://a:5986/wsman");
    EXPECT_EQ(exported({"--published-address", "http://a"}), "http://a/wsman");
    EXPECT_EQ(exported({"--config", configured}), "https://configured:1/wsman");
    EXPECT_EQ(exported({"--config", configured, "--host", "b:2"}), "http://b:2/wsman");
    EXPECT_EQ(exported({"--config", configured, "--published-address", "http://c"}),
              "http://c/wsman");
    EXPECT_EQ(runExport({"--host", "b", "--published-address", "http://c"}).end, "status 2");
    EXPECT_EQ(runExport({"--published-address", "c"}).end, "status 2");
}

}  // namespace

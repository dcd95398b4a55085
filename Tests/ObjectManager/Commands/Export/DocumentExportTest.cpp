#include <algorithm>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Commands/Export/DocumentExport.h"
#include "ObjectManager/Commands/Export/DocumentList.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using Base::OutputDirectory;
using Commands::DocumentExportOptions;
using Commands::DocumentExportResult;

// What is below a directory, apart from the lists of documents.
DirectoryContent withoutLists(const fs::path& directory) {
    DirectoryContent content = contentOf(directory);
    std::erase_if(content, [](const auto& file) {
        return fs::path(file.first).filename() == Commands::kDocumentListFile;
    });
    return content;
}

std::string response(const std::string& status, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/xml\r\n\r\n" + body;
}

// Classes below "test", whose documents say by which path and for which host they were asked for,
// unless a test gives other responses.
class DocumentExportTest : public testing::Test {
  protected:
    DocumentExportTest() {
        provider_.respond = [](const TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
            writeTo(ostr, response("200 OK", request.getUri().data() + std::string(" at ") +
                                                 request.getHost()->data()));
        };
        provider_.addTo(manager_);
    }

    [[nodiscard]] DocumentExportResult run(const TSKSmrPtr<Repository::ClassRepository>& repository,
                                           const DocumentExportOptions& options = {}) const {
        const Host::MemoryClient client(manager_, {.host = "host:1"});
        OutputDirectory output = OutputDirectory::create(directory_.path(), "export");
        output.lock();
        return exportDocuments(Commands::selectAllClasses(*repository), client, output, options);
    }

    [[nodiscard]] DirectoryContent content() const { return withoutLists(directory_.path()); }

    TeskProviderPluginManager manager_;
    FunctionProvider provider_;
    TemporaryDirectory directory_;
};

TEST_F(DocumentExportTest, WritesBothDocumentsOfEachClassIntoTheDirectoryOfTheNamespace) {
    const DocumentExportResult result =
        run(makeNamedClasses({{"test", {"A", "B"}}, {"test/Deep/er", {"C"}}}), {.jobs = 4});
    EXPECT_EQ(content(),
              (DirectoryContent{{"test", "(directory)"},
                                {"test/A.wsdl", "/test/A.wsdl at host:1"},
                                {"test/A.xsd", "/test/A.xsd at host:1"},
                                {"test/B.wsdl", "/test/B.wsdl at host:1"},
                                {"test/B.xsd", "/test/B.xsd at host:1"},
                                {"test/Deep", "(directory)"},
                                {"test/Deep/er", "(directory)"},
                                {"test/Deep/er/C.wsdl", "/test/Deep/er/C.wsdl at host:1"},
                                {"test/Deep/er/C.xsd", "/test/Deep/er/C.xsd at host:1"}}));
    EXPECT_EQ(result.namespaces, 2U);
    EXPECT_EQ(result.classes, 3U);
    EXPECT_EQ(result.documents, 6U);
    EXPECT_EQ(result.written, 6U);
    EXPECT_EQ(result.unchanged, 0U);
    EXPECT_EQ(result.removed, 0U);
    EXPECT_EQ(result.bytes, 22U + 21 + 22 + 21 + 30 + 29);
    EXPECT_GT(result.seconds, 0);
    EXPECT_EQ(failuresText(result), "");
    EXPECT_FALSE(result.isStopped);
}

TEST_F(DocumentExportTest, WritesOnlyWhatIsSelected) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"test", {"A", "B"}}, {"test/b", {"C"}}});
    const Host::MemoryClient client(manager_, {.host = "host"});
    const DocumentExportResult result =
        exportDocuments(Commands::selectClasses(*repository, {"b"}), client,
                        OutputDirectory::create(directory_.path(), "export"), {});
    EXPECT_EQ(content(), (DirectoryContent{{"test", "(directory)"},
                                           {"test/B.wsdl", "/test/B.wsdl at host"},
                                           {"test/B.xsd", "/test/B.xsd at host"}}));
    EXPECT_EQ(result.namespaces, 1U);
    EXPECT_EQ(result.classes, 1U);
}

TEST_F(DocumentExportTest, CountsWhatDoesNotChange) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"test", {"A", "B"}}});
    (void)run(repository);
    fs::remove(directory_ / "test/A.xsd");
    directory_.write("test/B.xsd", "other");
    const DirectoryContent all = content();
    const DocumentExportResult result = run(repository);
    EXPECT_EQ(result.written, 2U);
    EXPECT_EQ(result.unchanged, 2U);
    EXPECT_EQ(result.bytes, 22U + 21 + 22 + 21);
    EXPECT_EQ(content()["test/B.xsd"], "/test/B.xsd at host:1");
}

TEST_F(DocumentExportTest, TellsOfEachDocumentThatIsDone) {
    std::atomic<int> done = 0;
    DocumentExportOptions options;
    options.jobs = 3;
    options.onDocumentDone = [&] { ++done; };
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"test", {"A", "B", "C"}}, {"test/b", {"A"}}});
    EXPECT_EQ(countDocuments(Commands::selectAllClasses(*repository)), 8U);
    (void)run(repository, options);
    EXPECT_EQ(done, 8);
}

TEST_F(DocumentExportTest, ADocumentThatCannotBeMadeIsReportedAndTheOthersAreWritten) {
    provider_.respond = [](const TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        const std::string path = request.getUri().data();
        if (path.ends_with("A.wsdl"))
            writeTo(ostr, response("404 File Not Found", ""));
        else if (path.ends_with("B.xsd"))
            throw std::runtime_error("out of paper");
        else
            writeTo(ostr, response("200 OK", "document"));
    };
    const DocumentExportResult result =
        run(makeNamedClasses({{"other", {"D"}}, {"test", {"A", "B", "C"}}}), {.jobs = 2});
    EXPECT_EQ(failuresText(result),
              "other:D: D.wsdl cannot be made: no provider serves /other/D.wsdl\n"
              "other:D: D.xsd cannot be made: no provider serves /other/D.xsd\n"
              "test:A: A.wsdl: the response has the status 404\n"
              "test:B: B.xsd cannot be made: out of paper\n");
    EXPECT_EQ(content(), (DirectoryContent{{"other", "(directory)"},
                                           {"test", "(directory)"},
                                           {"test/A.xsd", "document"},
                                           {"test/B.wsdl", "document"},
                                           {"test/C.wsdl", "document"},
                                           {"test/C.xsd", "document"}}));
    EXPECT_EQ(result.documents, 8U);
    EXPECT_EQ(result.written, 4U);
}

TEST_F(DocumentExportTest, NamesOfClassesThatLeadElsewhereAreReported) {
    const std::string longName(251, 'x');
    const DocumentExportResult result = run(
        makeNamedClasses({{"test", {"../A", "a/b", std::string("a\0b", 3), longName, "Fine"}}}));
    const std::string failures =
        "test:../A: ../A.wsdl has a \"/\"\n"
        "test:../A: ../A.xsd has a \"/\"\n"
        "test:a_b: a_b.wsdl has a zero byte\n"
        "test:a_b: a_b.xsd has a zero byte\n"
        "test:a/b: a/b.wsdl has a \"/\"\n"
        "test:a/b: a/b.xsd has a \"/\"\n"
        "test:" +
        longName + ": " + longName + ".wsdl is longer than 255 bytes\n";
    std::string told = failuresText(result);
    std::replace(told.begin(), told.end(), '\0', '_');
    EXPECT_EQ(told, failures);
    EXPECT_EQ(content(), (DirectoryContent{
                             {"test", "(directory)"},
                             {"test/Fine.wsdl", "/test/Fine.wsdl at host:1"},
                             {"test/Fine.xsd", "/test/Fine.xsd at host:1"},
                             {"test/" + longName + ".xsd", "/test/" + longName + ".xsd at host:1"},
                         }));
}

TEST_F(DocumentExportTest, ADirectoryThatCannotBeMadeEndsTheExport) {
    directory_.write("test", "a file");
    try {
        (void)run(makeNamedClasses({{"test", {"A"}}}));
        ADD_FAILURE();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(), "cannot make the directory " + std::string(directory_ / "test") +
                                    ": Not a directory");
    }
    EXPECT_EQ(content(), (DirectoryContent{{"test", "a file"}}));
}

TEST_F(DocumentExportTest, AFileThatCannotBeWrittenEndsTheExport) {
    fs::create_directories(directory_ / "test/B.wsdl/in the way");
    try {
        (void)run(makeNamedClasses({{"test", {"A", "B", "C"}}}));
        ADD_FAILURE();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(),
                  "cannot write " + std::string(directory_ / "test/B.wsdl") + ": Is a directory");
    }
    EXPECT_EQ(content(), (DirectoryContent{{"test", "(directory)"},
                                           {"test/A.wsdl", "/test/A.wsdl at host:1"},
                                           {"test/A.xsd", "/test/A.xsd at host:1"},
                                           {"test/B.wsdl", "(directory)"},
                                           {"test/B.wsdl/in the way", "(directory)"}}));
}

TEST_F(DocumentExportTest, StopsBeforeTheNextDocument) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"test", {"A", "B"}}, {"test/b", {"C"}}});
    // Asked once a document, once before each namespace, and once after each before pruning.
    for (std::size_t documents = 0; documents < 6; ++documents) {
        const TemporaryDirectory directory;
        std::size_t done = 0;
        DocumentExportOptions options;
        options.isStopped = [&] { return done >= documents; };
        options.onDocumentDone = [&] { ++done; };
        const Host::MemoryClient client(manager_, {.host = "host"});
        const DocumentExportResult result =
            exportDocuments(Commands::selectAllClasses(*repository), client,
                            OutputDirectory::create(directory.path(), "export"), options);
        EXPECT_TRUE(result.isStopped);
        EXPECT_EQ(done, documents);
        EXPECT_EQ(result.written, documents);
        EXPECT_EQ(result.documents, 6U);
    }
}

TEST_F(DocumentExportTest, PrunesTheDirectoriesOfTheNamespacesAndNoOther) {
    provider_.respond = [](const TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        const fs::path path = request.getUri().data();
        writeTo(ostr,
                response("200 OK", "\"/wbem/wscim/1/cim-schema/2/" + path.stem().string() + "\""));
    };
    (void)run(makeNamedClasses({{"test", {"Gone", "Here"}},
                                {"test/b", {"Gone"}},
                                {"test/c", {"Gone"}},
                                {"test/b/d", {"Gone"}}}));
    directory_.write("Gone.xsd", "\"/wbem/wscim/1/cim-schema/2/Gone\"");
    const TSKSmrPtr<Repository::ClassRepository> later =
        makeNamedClasses({{"test", {"Here"}}, {"test/b", {}}});
    EXPECT_EQ(run(later).removed, 0U);
    EXPECT_EQ(run(later, {.prune = true}).removed, 4U);
    std::set<std::string> left;
    for (const auto& [name, text] : content()) {
        if (text != "(directory)")
            left.insert(name);
    }
    EXPECT_EQ(left, (std::set<std::string>{"Gone.xsd", "test/Here.wsdl", "test/Here.xsd",
                                           "test/c/Gone.wsdl", "test/c/Gone.xsd",
                                           "test/b/d/Gone.wsdl", "test/b/d/Gone.xsd"}));
}

TEST_F(DocumentExportTest, PrunesTemporaryFilesOfKilledProcessesBesideTheNamespacesToo) {
    const std::string unfinished = ".tesk-export-4711-1";
    for (const std::string directory : {"", "test/", "test/b/", "test/c/"}) {
        fs::create_directories(directory_ / directory);
        directory_.write(directory + unfinished, "part");
    }
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"test", {}}, {"test/b", {}}});
    EXPECT_EQ(run(repository).removed, 0U);
    EXPECT_EQ(run(repository, {.prune = true}).removed, 3U);
    EXPECT_EQ(content(), (DirectoryContent{{"test", "(directory)"},
                                           {"test/b", "(directory)"},
                                           {"test/c", "(directory)"},
                                           {"test/c/" + unfinished, "part"}}));
}

// Written by hand, with all that a document of the class would have.
TEST_F(DocumentExportTest, PrunesNoFileThatNoExportHasWritten) {
    (void)run(makeNamedClasses({{"test", {"Here"}}}));
    directory_.write("test/Gone.xsd", "\"/wbem/wscim/1/cim-schema/2/Gone\"");
    const DirectoryContent before = content();
    EXPECT_EQ(run(makeNamedClasses({{"test", {"Here"}}}), {.prune = true}).removed, 0U);
    EXPECT_EQ(content(), before);
}

TEST_F(DocumentExportTest, PrunesNothingWhenTheListCannotBeRead) {
    (void)run(makeNamedClasses({{"test", {"Gone"}}}));
    directory_.write("test/.tesk-export", "../elsewhere.xsd\n");
    const DocumentExportResult result =
        run(makeNamedClasses({{"test", {"Here"}}}), {.prune = true});
    EXPECT_EQ(result.removed, 0U);
    EXPECT_EQ(failuresText(result),
              (directory_ / "test/.tesk-export").string() +
                  " cannot be read, so no document is listed or removed there: it has a line that "
                  "is no name of a document\n");
    EXPECT_TRUE(content().contains("test/Gone.xsd"));
    EXPECT_TRUE(content().contains("test/Here.xsd"));
    EXPECT_EQ(contentOf(directory_.path())["test/.tesk-export"], "../elsewhere.xsd\n");
}

TEST_F(DocumentExportTest, ANamespaceWithTheNameOfAFileOfTheExportIsRefusedBeforeAllElse) {
    const auto reasonFor = [&](const std::string& nameSpace) {
        try {
            (void)run(makeNamedClasses({{"test", {"A"}}, {nameSpace.c_str(), {"B"}}}));
        } catch (const TeskBaseException& error) {
            return std::string(error.getMessage());
        }
        return std::string();
    };
    const auto expected = [](const std::string& nameSpace, const std::string& reason) {
        return "the namespace \"" + nameSpace + "\" cannot be the path of a directory: " + reason;
    };
    for (const std::string name : {"index.html", "Index.HTML", ".tesk-export", ".tesk-export-1-1"})
        EXPECT_EQ(reasonFor(name), expected(name, "the export has a file \"" + name + "\""));
    EXPECT_EQ(reasonFor("test/.tesk-export/b"),
              expected("test/.tesk-export/b", "the export has a file \".tesk-export\""));
    EXPECT_EQ(reasonFor("Test/a.XSD"),
              expected("Test/a.XSD", "\"a.XSD\" is a document of the namespace \"Test\""));
    EXPECT_EQ(content(), DirectoryContent());
    EXPECT_EQ(reasonFor("test/index.html"), "");
    EXPECT_EQ(reasonFor("test/C.xsd"), "");
}

TEST_F(DocumentExportTest, AnExportThatIsAtWorkInTheDirectoryIsNotDisturbed) {
    OutputDirectory other = OutputDirectory::create(directory_ / "test", "export");
    other.lock();
    EXPECT_THROW((void)run(makeNamedClasses({{"test", {"A"}}})), std::system_error);
    EXPECT_EQ(content(), (DirectoryContent{{"test", "(directory)"}}));
}

TEST_F(DocumentExportTest, PrunesNothingWhenItIsStopped) {
    provider_.respond = [](const TSKHTTPRequest&, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, response("200 OK", "\"/wbem/wscim/1/cim-schema/2/Gone\""));
    };
    (void)run(makeNamedClasses({{"test", {"Gone"}}}));
    directory_.write(".tesk-export-4711-1", "part");
    const DirectoryContent before = content();
    int asked = 0;
    DocumentExportOptions options{.prune = true, .isStopped = [&] { return ++asked > 1; }};
    const DocumentExportResult result = run(makeNamedClasses({{"test", {}}}), options);
    EXPECT_TRUE(result.isStopped);
    EXPECT_EQ(result.removed, 0U);
    EXPECT_EQ(content(), before);
}

// A failure is none of the class, which is still there.
TEST_F(DocumentExportTest, PruningKeepsTheDocumentsOfClassesThatFail) {
    directory_.write("keep", "");
    provider_.respond = [](const TSKHTTPRequest&, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, response("200 OK", "\"/wbem/wscim/1/cim-schema/2/A\""));
    };
    const TSKSmrPtr<Repository::ClassRepository> repository = makeNamedClasses({{"test", {"A"}}});
    (void)run(repository);
    const DirectoryContent before = content();
    provider_.respond = [](const TSKHTTPRequest&, TSKGenericHTTPOStream&) {
        throw std::runtime_error("no");
    };
    const DocumentExportResult result = run(repository, {.prune = true});
    EXPECT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(content(), before);
}

TEST_F(DocumentExportTest, TheSummaryIsALine) {
    DocumentExportResult result;
    result.namespaces = 1;
    result.classes = 1438;
    result.documents = 2876;
    result.written = 10;
    result.unchanged = 2866;
    result.removed = 1000;
    result.bytes = 60'100'000;
    result.seconds = 1.524;
    EXPECT_EQ(summaryText(result),
              "1,438 classes in 1 namespace, 2,876 documents, 60.1 MB, 1.52 s: 10 written, 2,866 "
              "unchanged, 1,000 removed\n");
}

// With the real plug-in: what is exported is what is served.
TEST(DocumentExport, TheBytesAreThoseThatTheProviderSends) {
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{.name = "root/cimv2", .paths = {MODELS_DIRECTORY "/cimv2/cimv2.mof"}},
         {.name = "interop", .paths = {MODELS_DIRECTORY "/interop/interop.mof"}}},
        {MODELS_DIRECTORY}, {});
    ASSERT_TRUE(loaded.repository);
    const Host::ProviderHost host(loaded.repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  INSTALLATION_DIRECTORY);
    const Host::MemoryClient client(host.manager(), {.host = "[2001:db8::1]:8080"});
    const TemporaryDirectory directory;
    const DocumentExportResult result =
        exportDocuments(Commands::selectAllClasses(*loaded.repository), client,
                        OutputDirectory::create(directory.path(), "export"), {.jobs = 2});
    EXPECT_EQ(failuresText(result), "");
    DirectoryContent expected = {
        {"root", "(directory)"}, {"root/cimv2", "(directory)"}, {"interop", "(directory)"}};
    for (const Repository::CimNamespace& nameSpace : loaded.repository->namespaces()) {
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
            for (const char* extension : {".wsdl", ".xsd"}) {
                const TSKString path = nameSpace.name() + "/" + cimClass->name() + extension;
                expected[path.data()] = client.get("/" + path).body();
            }
        }
    }
    EXPECT_EQ(expected.size(), 2U * (38 + 21) + 3);
    EXPECT_EQ(withoutLists(directory.path()), expected);
    EXPECT_NE(expected["root/cimv2/CIM_ComputerSystem.wsdl"].find("http://[2001:db8::1]:8080/"),
              std::string::npos);
}

}  // namespace

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "ObjectManager/Commands/Export/DocumentList.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using Commands::DocumentList;
using Commands::OutputDirectory;

constexpr const char* kHeading =
    "# The documents that \"tesk export\" has written here, of which --prune removes those of "
    "classes that are gone.\n";

class DocumentListTest : public testing::Test {
  protected:
    // Lists the documents and removes the stale ones. Returns what is left.
    [[nodiscard]] DirectoryContent prune(const std::vector<std::string>& listed,
                                         std::size_t expectedRemoved) const {
        DocumentList list;
        for (const std::string& document : listed)
            list.add(document);
        EXPECT_EQ(list.removeStale(output_, repository_->namespaces().front()), expectedRemoved);
        return contentOf(directory_.path());
    }

    TSKSmrPtr<Repository::ClassRepository> repository_ = makeNamedClasses({{"root", {"CIM_Here"}}});
    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path());
};

TEST_F(DocumentListTest, IsKeptInAFile) {
    DocumentList list;
    for (const char* const document : {"CIM_B.xsd", "CIM_A.wsdl", "CIM_B.xsd"})
        list.add(document);
    list.write(output_);
    const std::string text = kHeading + std::string("CIM_A.wsdl\nCIM_B.xsd\n");
    EXPECT_EQ(contentOf(directory_.path()), (DirectoryContent{{".tesk-export", text}}));
    DocumentList again = DocumentList::read(output_);
    EXPECT_EQ(again.fault(), "");
    again.add("\xC3\xA9.xsd");
    again.write(output_);
    EXPECT_EQ(contentOf(directory_.path()),
              (DirectoryContent{{".tesk-export", text + "\xC3\xA9.xsd\n"}}));
}

TEST_F(DocumentListTest, IsEmptyWhereNoneIsKept) {
    const DocumentList list = DocumentList::read(output_);
    EXPECT_EQ(list.fault(), "");
    list.write(output_);
    EXPECT_EQ(contentOf(directory_.path()), (DirectoryContent{{".tesk-export", kHeading}}));
}

// Names that lead elsewhere, that no export has made, or that are half a name.
TEST_F(DocumentListTest, WithAnotherLineThanADocumentIsNotUsed) {
    for (const std::string line :
         {"../CIM_A.xsd\n", "/CIM_A.xsd\n", "below/CIM_A.xsd\n", "..\n", "\n", ".xsd\n",
          "index.txt\n", ".tesk-export\n", "CIM_A.xsd\r\n", "CIM_B.xsd"}) {
        directory_.write(".tesk-export", "CIM_Gone.xsd\n" + line);
        directory_.write("CIM_Gone.xsd", "");
        DocumentList list = DocumentList::read(output_);
        EXPECT_EQ(list.fault(), "it has a line that is no name of a document") << line;
        EXPECT_EQ(list.removeStale(output_, repository_->namespaces().front()), 0U);
    }
}

TEST_F(DocumentListTest, HoldsNoNameThatItCouldNotRead) {
    DocumentList list;
    for (const char* const name : {"../CIM_A.xsd", "CIM_A\n.xsd", "index.txt", ".xsd", ""})
        list.add(name);
    list.write(output_);
    EXPECT_EQ(contentOf(directory_.path())[".tesk-export"], kHeading);
}

TEST_F(DocumentListTest, IsNotReadThroughALinkNorFromAPipe) {
    const TemporaryDirectory elsewhere;
    fs::create_symlink(elsewhere.write("list", "CIM_Gone.xsd\n"), directory_ / ".tesk-export");
    EXPECT_EQ(DocumentList::read(output_).fault(), "Too many levels of symbolic links");
    fs::remove(directory_ / ".tesk-export");
    ASSERT_EQ(mkfifo((directory_ / ".tesk-export").c_str(), 0600), 0);
    EXPECT_EQ(DocumentList::read(output_).fault().substr(0, 24), "it is not a regular file");
}

TEST_F(DocumentListTest, BothDocumentsOfAClassThatIsGoneAreRemoved) {
    for (const char* const file : {"CIM_Gone.wsdl", "CIM_Gone.xsd", "CIM_Here.wsdl"})
        directory_.write(file, "");
    EXPECT_EQ(prune({"CIM_Gone.wsdl", "CIM_Gone.xsd", "CIM_Here.wsdl"}, 2),
              (DirectoryContent{{"CIM_Here.wsdl", ""}}));
}

TEST_F(DocumentListTest, FilesThatAreNotListedStay) {
    for (const char* const file : {"CIM_Gone.xsd", "CIM_Gone.wsdl", "CIM_HERE.xsd", "notes.txt"})
        directory_.write(file, "\"/wbem/wscim/1/cim-schema/2/CIM_Gone\"");
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune({"CIM_Here.xsd", "CIM_Missing.xsd"}, 0), before);
}

// Where file names ignore case this is the document of the class that is there.
TEST_F(DocumentListTest, ADocumentInAnotherCaseStays) {
    directory_.write("cim_here.xsd", "");
    EXPECT_EQ(prune({"cim_here.xsd"}, 0).size(), 1U);
}

TEST_F(DocumentListTest, ADocumentUnderAFormerCaseIsRemovedBesideThePresentOne) {
    for (const char* const file : {"CIM_HERE.wsdl", "CIM_HERE.xsd", "cim_here.xsd", "CIM_Here.xsd"})
        directory_.write(file, "");
    EXPECT_EQ(prune({"CIM_HERE.wsdl", "CIM_HERE.xsd", "cim_here.xsd", "CIM_Here.xsd"}, 2),
              (DirectoryContent{{"CIM_HERE.wsdl", ""}, {"CIM_Here.xsd", ""}}));
}

TEST_F(DocumentListTest, DirectoriesAndLinksStayAndAreNotFollowed) {
    fs::create_directory(directory_ / "CIM_Gone.xsd");
    const TemporaryDirectory elsewhere;
    const fs::path target = elsewhere.write("CIM_Gone.wsdl", "");
    fs::create_symlink(target, directory_ / "CIM_Gone.wsdl");
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune({"CIM_Gone.xsd", "CIM_Gone.wsdl"}, 0), before);
    EXPECT_TRUE(fs::exists(target));
}

}  // namespace

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Export/DocumentList.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using Base::OutputDirectory;
using Commands::emptyDocumentList;
using Commands::readDocumentList;
using Commands::removeStaleDocuments;

constexpr const char* kHeading =
    "# The documents that \"tesk export\" has written here, of which --prune removes those of "
    "classes that are gone.\n";

class DocumentListTest : public testing::Test {
  protected:
    // Lists the documents and removes the stale ones. Returns what is left.
    [[nodiscard]] DirectoryContent prune(const std::vector<std::string>& listed,
                                         std::size_t expectedRemoved) const {
        Base::FileList list = emptyDocumentList();
        for (const std::string& document : listed)
            list.add(document);
        EXPECT_EQ(removeStaleDocuments(list, output_, repository_->namespaces().front()),
                  expectedRemoved);
        return contentOf(directory_.path());
    }

    TSKSmrPtr<Repository::ClassRepository> repository_ = makeNamedClasses({{"root", {"CIM_Here"}}});
    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path(), "export");
};

TEST_F(DocumentListTest, IsKeptInAFile) {
    Base::FileList list = emptyDocumentList();
    for (const char* const name :
         {"CIM_B.xsd", "CIM_A.wsdl", "../CIM_A.xsd", "index.txt", ".xsd", "notes.txt"})
        list.add(name);
    list.write(output_);
    EXPECT_EQ(
        contentOf(directory_.path()),
        (DirectoryContent{{".tesk-export", kHeading + std::string("CIM_A.wsdl\nCIM_B.xsd\n")}}));
    EXPECT_EQ(readDocumentList(output_).fault(), "");
    directory_.write(".tesk-export", "index.txt\n");
    EXPECT_EQ(readDocumentList(output_).fault(), "it has a line that is no name of a document");
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

}  // namespace

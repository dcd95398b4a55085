#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Commands/Export/StaleDocuments.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using Commands::OutputDirectory;
using Commands::removeStaleDocuments;

class StaleDocumentsTest : public testing::Test {
  protected:
    static std::string documentOf(const std::string& className) {
        return "<?xml version=\"1.0\"?>\n<xs:schema targetNamespace=\"http://schemas.example.com"
               "/wbem/wscim/1/cim-schema/2/" +
               className + "\">";
    }

    // Returns what is left.
    [[nodiscard]] DirectoryContent prune(std::size_t expectedRemoved) const {
        EXPECT_EQ(removeStaleDocuments(output_, repository_->namespaces().front()),
                  expectedRemoved);
        return contentOf(directory_.path());
    }

    TSKSmrPtr<Repository::ClassRepository> repository_ = makeNamedClasses({{"root", {"CIM_Here"}}});
    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path());
};

TEST_F(StaleDocumentsTest, BothDocumentsOfAClassThatIsGoneAreRemoved) {
    directory_.write("CIM_Gone.wsdl", documentOf("CIM_Gone"));
    directory_.write("CIM_Gone.xsd", documentOf("CIM_Gone"));
    directory_.write("CIM_Here.wsdl", documentOf("CIM_Here"));
    EXPECT_EQ(prune(2), (DirectoryContent{{"CIM_Here.wsdl", documentOf("CIM_Here")}}));
    EXPECT_EQ(prune(0), (DirectoryContent{{"CIM_Here.wsdl", documentOf("CIM_Here")}}));
}

// Where file names ignore case this is the document of the class that is there.
TEST_F(StaleDocumentsTest, ADocumentInAnotherCaseStays) {
    directory_.write("cim_here.xsd", documentOf("cim_here"));
    EXPECT_EQ(prune(0).size(), 1U);
}

TEST_F(StaleDocumentsTest, ADocumentUnderAFormerCaseIsRemovedBesideThePresentOne) {
    for (const char* const file : {"CIM_HERE.wsdl", "CIM_HERE.xsd", "cim_here.xsd"})
        directory_.write(file, documentOf(fs::path(file).stem()));
    directory_.write("CIM_Here.xsd", documentOf("CIM_Here"));
    EXPECT_EQ(prune(2), (DirectoryContent{{"CIM_HERE.wsdl", documentOf("CIM_HERE")},
                                          {"CIM_Here.xsd", documentOf("CIM_Here")}}));
}

TEST_F(StaleDocumentsTest, AFileInAnotherCaseThatIsNoDocumentStays) {
    directory_.write("cim_here.xsd", documentOf("CIM_Gone"));
    directory_.write("CIM_Here.xsd", documentOf("CIM_Here"));
    EXPECT_EQ(prune(0).size(), 2U);
}

TEST_F(StaleDocumentsTest, OtherFilesStay) {
    for (const char* const name : {"CIM_Gone.txt", "CIM_Gone", "CIM_Gone.WSDL", "CIM_Gone.xsd.bak",
                                   "CIM_Gone.xsd~", ".xsd", "index.html"})
        directory_.write(name, documentOf("CIM_Gone"));
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune(0), before);
}

TEST_F(StaleDocumentsTest, FilesThatOnlyHaveSuchANameStay) {
    directory_.write("empty.xsd", "");
    directory_.write("wsman.xsd",
                     "<xs:schema targetNamespace=\"http://schemas.example.com/wsman\">");
    directory_.write("CIM_Copy.xsd", documentOf("CIM_Gone"));
    directory_.write("CIM_Gon.wsdl", documentOf("CIM_Gone"));
    directory_.write("CIM_Late.xsd", std::string(5000, ' ') + documentOf("CIM_Late"));
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune(0), before);
}

TEST_F(StaleDocumentsTest, DirectoriesAndLinksStayAndAreNotFollowed) {
    fs::create_directory(directory_ / "below");
    directory_.write("below/CIM_Gone.xsd", documentOf("CIM_Gone"));
    fs::create_directory(directory_ / "CIM_Gone.xsd");
    const TemporaryDirectory elsewhere;
    const fs::path target = elsewhere.write("CIM_Gone.wsdl", documentOf("CIM_Gone"));
    fs::create_symlink(target, directory_ / "CIM_Gone.wsdl");
    fs::create_directory_symlink(elsewhere.path(), directory_ / "link");
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune(0), before);
    EXPECT_TRUE(fs::exists(target));
}

}  // namespace

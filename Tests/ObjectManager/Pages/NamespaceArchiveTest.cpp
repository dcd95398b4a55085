#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Pages/NamespaceArchive.h"
#include "Tests/Support/MofModel.h"

namespace {

// The names of the files of an archive, as its directory has them.
std::vector<std::string> filesOf(const std::string& archive) {
    constexpr std::size_t kLengthAt = 28;
    constexpr std::size_t kNameAt = 46;
    std::vector<std::string> files;
    for (std::size_t entry = archive.find("PK\1\2"); entry != archive.npos;
         entry = archive.find("PK\1\2", entry + 1))
        files.push_back(archive.substr(entry + kNameAt,
                                       static_cast<unsigned char>(archive.at(entry + kLengthAt))));
    return files;
}

TEST(NamespaceArchive, HoldsBothDocumentsOfEachClassAndWhatTheyNeed) {
    const MofModel model("class B {}; class A {};");
    std::vector<std::string> asked;
    std::string archive;
    Pages::writeNamespaceArchive(
        model.nameSpace(),
        [&](const std::string& path) {
            asked.push_back(path);
            return path;
        },
        [&](std::string_view bytes) { archive += bytes; });
    EXPECT_EQ(asked, (std::vector<std::string>{"/root/test/A.wsdl", "/root/test/A.xsd",
                                               "/root/test/B.wsdl", "/root/test/B.xsd"}));
    EXPECT_EQ(filesOf(archive),
              (std::vector<std::string>{"README.txt", "catalog.xml", "root/test/A.wsdl",
                                        "root/test/A.xsd", "root/test/B.wsdl", "root/test/B.xsd"}));
}

TEST(NamespaceArchive, ADocumentThatIsGoneIsLeftOut) {
    const MofModel model("class A {};");
    std::string archive;
    Pages::writeNamespaceArchive(
        model.nameSpace(),
        [](const std::string& path) -> std::optional<std::string> {
            if (path.ends_with(".wsdl"))
                return std::nullopt;
            return "";
        },
        [&](std::string_view bytes) { archive += bytes; });
    EXPECT_EQ(filesOf(archive),
              (std::vector<std::string>{"README.txt", "catalog.xml", "root/test/A.xsd"}));
}

}  // namespace

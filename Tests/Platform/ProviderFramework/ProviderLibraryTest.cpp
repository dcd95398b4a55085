#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "Platform/ProviderFramework/ProviderLibrary.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

TSKString fixture(const std::string& name) {
    return (std::string(FIXTURES_DIRECTORY) + "/lib" + name + ".so").c_str();
}

// Why loading fails; "" when it does not.
std::string failureOf(const TSKString& file) {
    try {
        (void)ProviderLibrary::load(file);
        return "";
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

TEST(ProviderLibrary, GivesTheProviderOfTheFactoryNamedAfterTheLibrary) {
    EXPECT_EQ(ProviderLibrary::load(fixture("GoodProvider")).getProviderName(), "GoodProvider");
}

TEST(ProviderLibrary, FindsFilesInTheWorkingDirectoryByTheirNameAlone) {
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(FIXTURES_DIRECTORY);
    EXPECT_EQ(failureOf("libGoodProvider.so"), "");
    std::filesystem::current_path(previous);
}

TEST(ProviderLibrary, FailsWithoutAFactory) {
    EXPECT_EQ(failureOf(fixture("NoFactory")),
              "The library does not export the function getTeskNoFactory");
}

TEST(ProviderLibrary, FailsWhenTheFactoryGivesNoProvider) {
    EXPECT_EQ(failureOf(fixture("NullFactory")),
              "The function getTeskNullFactory returned no provider");
}

TEST(ProviderLibrary, PassesOnWhatTheFactoryThrows) {
    EXPECT_EQ(failureOf(fixture("ThrowingFactory")), "There is no hardware to manage");
}

TEST(ProviderLibrary, SaysWhatALibraryIsMissing) {
    const std::string failure = failureOf(fixture("MissingSymbol"));
    EXPECT_NE(failure.find("nobodyDefinesThis"), std::string::npos) << failure;
}

TEST(ProviderLibrary, FailsForAFileThatIsNotThere) {
    const std::string failure = failureOf("/nowhere/libNowhere.so");
    EXPECT_NE(failure.find("/nowhere/libNowhere.so"), std::string::npos) << failure;
}

TEST(ProviderLibrary, FailsForFilesThatAreNoLibraries) {
    const TemporaryDirectory directory;
    for (const char* const content : {"", "text", "\177ELF"}) {
        const std::string file = directory.write("libText.so", content);
        const std::string failure = failureOf(file.c_str());
        EXPECT_NE(failure.find("libText.so"), std::string::npos) << failure;
    }
}

TEST(ProviderLibrary, RefusesOtherFileNames) {
    EXPECT_EQ(failureOf("/tmp/Provider.so"), "The name of the file is not libNAME.so");
    EXPECT_EQ(failureOf("/tmp/"), "The name of the file is not libNAME.so");
    EXPECT_EQ(failureOf(""), "The name of the file is not libNAME.so");
}

TEST(ProviderLibrary, KnowsTheNamesOfLibraries) {
    EXPECT_TRUE(ProviderLibrary::isLibraryName("libA.so"));
    for (const char* const name : {"", "lib.so", "libA.so.1", "A.so", "libA.SO", "lib", "libso"})
        EXPECT_FALSE(ProviderLibrary::isLibraryName(name)) << name;
}

}  // namespace

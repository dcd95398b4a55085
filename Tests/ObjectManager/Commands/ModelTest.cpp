#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Commands::ModelOptions;

std::vector<Loading::NamespaceSource> namespacesOf(const ModelOptions& options) {
    std::ostringstream messages;
    return Commands::readSettings(options, messages).namespaces;
}

// A line each: "NAME: PATH PATH".
std::string linesOf(const std::vector<Loading::NamespaceSource>& sources) {
    std::string lines;
    for (const Loading::NamespaceSource& source : sources) {
        lines += source.name + ":";
        for (const std::string& path : source.paths)
            lines += " " + path;
        lines += "\n";
    }
    return lines;
}

TEST(Model, IsTheSampleModelByDefault) {
    const std::string models = Host::InstallationPaths::ofThisProgram().models;
    EXPECT_EQ(linesOf(namespacesOf({})), "root/cimv2: " + models + "/cimv2/cimv2.mof\n" +
                                             "interop: " + models + "/interop/interop.mof\n");
}

TEST(Model, HasTheNamespacesInTheirOrder) {
    const ModelOptions options = {.namespaces = {"root/a=a.mof", "root/b=b.mof", "root/a=c.mof"},
                                  .configuration = ""};
    EXPECT_EQ(linesOf(namespacesOf(options)), "root/a: a.mof\nroot/b: b.mof\nroot/a: c.mof\n");
}

TEST(Model, HasTheClassesOfAllNamespaces) {
    const TemporaryDirectory directory;
    ModelOptions options;
    options.namespaces = {
        "root/a=" + directory.write("a.mof", "class TST_A {};").string(),
        "root/b=" + directory.write("b.mof", "class TST_B {};").string(),
        "Root/A=" + directory.write("c.mof", "class TST_C {};").string(),
    };
    const TSKSmrPtr<Repository::ClassRepository> repository = Commands::loadModel(options);
    EXPECT_EQ(repository->namespaces().size(), 2U);
    EXPECT_TRUE(repository->getClass("root/a", "TST_A"));
    EXPECT_TRUE(repository->getClass("root/b", "TST_B"));
    EXPECT_TRUE(repository->getClass("root/a", "TST_C"));
}

// At a start and at a reload.
TEST(Model, WarnsOfClassesThatAreLeftOut) {
    const TemporaryDirectory directory;
    std::string mof =
        "Qualifier ValueMap : string[], Scope(property);\n"
        "class TST_A { [ValueMap{\"4294967295\", \"..\"}] uint32 q; };\n";
    for (int number = 0; number < 21; ++number)
        mof += "class TST_" + std::to_string(number) + " : TST_A {};\n";
    Configuration::Settings settings;
    settings.namespaces = {{.name = "root/a", .paths = {directory.write("a.mof", mof)}}};
    std::ostringstream messages;
    (void)Commands::loadModel(settings, messages);
    const std::string text = messages.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 22);
    EXPECT_NE(text.find("tesk: warning: the class root/a:TST_12 is left out: its documents would "
                        "have up to 253.4 GB, the property \"q\" alone 253.4 GB; at most 67.1 MB "
                        "are allowed (repository.max_document_size)\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("tesk: warning: root/a: 2 more classes are left out likewise\n"
                        "tesk: warning: the namespace root/a has no class\n"),
              std::string::npos)
        << text;
}

TEST(Model, AddsTheIncludePathOfTheCommandLine) {
    const TemporaryDirectory directory;
    ModelOptions options;
    options.namespaces = {"root/b=b.mof"};
    options.configuration = directory.write("tesk.toml", "include_path = '/one'\n");
    options.includePath = {"two", "/three"};
    std::ostringstream messages;
    EXPECT_EQ(Commands::readSettings(options, messages).includePath,
              (std::vector<std::string>{"/one", "two", "/three"}));
}

TEST(Model, WithAnErrorIsNotLoaded) {
    const TemporaryDirectory directory;
    ModelOptions options;
    options.namespaces = {"root/a=" + directory.write("a.mof", "class TST_A {};").string(),
                          "root/b=" + directory.write("b.mof", "class").string()};
    try {
        (void)Commands::loadModel(options);
        FAIL();
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(error.getMessage(), "the classes have errors and are not used");
    }
}

TEST(Model, IsThatOfTheConfigurationWithoutNamespacesOnTheCommandLine) {
    const TemporaryDirectory directory;
    ModelOptions options;
    options.configuration = directory.write("tesk.toml", R"([namespaces]
"root/a" = "/a.mof"
[repository]
property_order = "declaration"
)");
    EXPECT_EQ(linesOf(namespacesOf(options)), "root/a: /a.mof\n");
    std::ostringstream messages;
    EXPECT_EQ(Commands::readSettings(options, messages).repository.propertyOrder,
              Repository::PropertyOrder::kDeclaration);
    options.namespaces = {"root/b=b.mof"};
    EXPECT_EQ(linesOf(namespacesOf(options)), "root/b: b.mof\n");
}

TEST(Model, AWrongConfigurationIsNotUsed) {
    const TemporaryDirectory directory;
    ModelOptions options;
    options.configuration = directory.write("tesk.toml", "nothing = 1\n");
    std::ostringstream messages;
    try {
        (void)Commands::readSettings(options, messages);
        FAIL();
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(error.getMessage(), "the configuration has errors and is not used");
    }
    EXPECT_EQ(messages.str(),
              options.configuration +
                  ":1:1: error: unknown key \"nothing\"; known are \"include_path\", "
                  "\"servers\", \"namespaces\", \"repository\", \"server\", "
                  "\"security\" and \"log\"\n");
}

}  // namespace

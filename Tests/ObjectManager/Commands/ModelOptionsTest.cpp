#include <CLI/CLI.hpp>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/ModelOptions.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using Commands::ModelOptions;

// The options of a command line; its arguments are in reverse order.
ModelOptions parse(std::vector<std::string> arguments) {
    CLI::App command;
    ModelOptions options;
    Commands::addModelOptions(command, options);
    std::string path;
    command.add_option("PATH", path);
    command.parse(std::move(arguments));
    return options;
}

std::string faultOf(std::vector<std::string> arguments) {
    try {
        (void)parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return error.what();
    }
    return "none";
}

std::vector<Repository::NamespaceSource> namespacesOf(const ModelOptions& options) {
    return Commands::settingsOf(options).namespaces;
}

// A line each: "NAME: PATH PATH".
std::string linesOf(const std::vector<Repository::NamespaceSource>& sources) {
    std::string lines;
    for (const Repository::NamespaceSource& source : sources) {
        lines += source.name + ":";
        for (const std::string& path : source.paths)
            lines += " " + path;
        lines += "\n";
    }
    return lines;
}

TEST(ModelOptions, AreTheSampleModelByDefault) {
    const std::string models = Host::InstallationPaths::ofThisProgram().models;
    EXPECT_EQ(linesOf(namespacesOf(parse({}))), "root/cimv2: " + models + "/cimv2/cimv2.mof\n" +
                                                    "interop: " + models +
                                                    "/interop/interop.mof\n");
}

TEST(ModelOptions, NameNamespacesInTheirOrder) {
    EXPECT_EQ(linesOf(namespacesOf(parse({"root/a=c.mof", "--namespace", "root/b=b.mof",
                                          "--namespace", "--namespace=root/a=a.mof"}))),
              "root/a: a.mof\nroot/b: b.mof\nroot/a: c.mof\n");
}

// What follows is not taken for another namespace.
TEST(ModelOptions, TakeOneNamespaceEachTime) {
    EXPECT_EQ(linesOf(namespacesOf(parse({"other", "root/a=a.mof", "--namespace"}))),
              "root/a: a.mof\n");
}

TEST(ModelOptions, RefuseWhatIsNoNamespace) {
    EXPECT_EQ(faultOf({"root/a", "--namespace"}),
              "--namespace: \"root/a\" is no namespace with a MOF file or folder, such as "
              "\"root/cimv2=schema/cim.mof\"");
    EXPECT_EQ(faultOf({"--namespace"}), "--namespace: 1 required NAME=PATH missing");
}

TEST(ModelOptions, LoadTheClassesOfAllNamespaces) {
    const TemporaryFolder folder;
    ModelOptions options;
    options.namespaces = {
        "root/a=" + folder.write("a.mof", "class TST_A {};").string(),
        "root/b=" + folder.write("b.mof", "class TST_B {};").string(),
        "Root/A=" + folder.write("c.mof", "class TST_C {};").string(),
    };
    const TSKSmrPtr<Repository::ClassRepository> repository =
        Commands::loadModel(Commands::settingsOf(options));
    EXPECT_EQ(repository->namespaces().size(), 2U);
    EXPECT_TRUE(repository->getClass("root/a", "TST_A"));
    EXPECT_TRUE(repository->getClass("root/b", "TST_B"));
    EXPECT_TRUE(repository->getClass("root/a", "TST_C"));
}

TEST(ModelOptions, LoadNothingWithAnError) {
    const TemporaryFolder folder;
    ModelOptions options;
    options.namespaces = {"root/a=" + folder.write("a.mof", "class TST_A {};").string(),
                          "root/b=" + folder.write("b.mof", "class").string()};
    try {
        (void)Commands::loadModel(Commands::settingsOf(options));
        FAIL();
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(error.getMessage(), "the classes have errors and are not used");
    }
}

TEST(ModelOptions, AreThoseOfTheConfigurationWithoutAnyOnTheCommandLine) {
    const TemporaryFolder folder;
    ModelOptions options;
    options.configuration = folder.write("tesk.toml", R"([namespaces]
"root/a" = "/a.mof"
[repository]
property_order = "declaration"
)");
    EXPECT_EQ(linesOf(namespacesOf(options)), "root/a: /a.mof\n");
    EXPECT_EQ(Commands::settingsOf(options).repository.propertyOrder,
              Repository::PropertyOrder::kDeclaration);
    options.namespaces = {"root/b=b.mof"};
    EXPECT_EQ(linesOf(namespacesOf(options)), "root/b: b.mof\n");
}

TEST(ModelOptions, AWrongConfigurationIsNotUsed) {
    const TemporaryFolder folder;
    ModelOptions options;
    options.configuration = folder.write("tesk.toml", "nothing = 1\n");
    testing::internal::CaptureStderr();
    try {
        (void)Commands::settingsOf(options);
        FAIL();
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(error.getMessage(), "the configuration has errors and is not used");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              options.configuration +
                  ":1:1: error: unknown key \"nothing\"; known are \"include_path\", "
                  "\"namespaces\", \"repository\", \"server\", "
                  "\"security\" and \"log\"\n");
}

}  // namespace

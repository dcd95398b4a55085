#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/SharedOptions.h"
#include "Tests/ObjectManager/Commands/ParsedCommand.h"

namespace {

using Commands::Command;
using Commands::ModelOptions;
using Commands::OutputFormat;

using Texts = std::vector<std::string>;

ModelOptions parseModel(const Texts& arguments) {
    ModelOptions options;
    Command command;
    Commands::addModelOptions(command, options);
    std::string path;
    command.options.push_back({.name = "PATH", .help = "", .target = &path});
    EXPECT_EQ(parseOptions(command, arguments), "");
    return options;
}

// The format after a command line was read, or what is wrong with it.
std::string parseFormat(const Texts& arguments) {
    auto format = OutputFormat::kText;
    Command command;
    command.options = {Commands::formatOption(format)};
    const std::string fault = parseOptions(command, arguments);
    if (!fault.empty())
        return fault;
    return format == OutputFormat::kJson ? "json" : "text";
}

std::string parseJobs(const Texts& arguments) {
    unsigned jobs = 7;
    Command command;
    command.options = {Commands::jobsOption(jobs, "")};
    const std::string fault = parseOptions(command, arguments);
    return fault.empty() ? std::to_string(jobs) : fault;
}

TEST(ModelOptions, AreNamespacesAndAConfiguration) {
    const ModelOptions options =
        parseModel({"--namespace=root/a=a.mof", "--config", "tesk.toml", "--namespace", "b=b"});
    EXPECT_EQ(options.namespaces, (Texts{"root/a=a.mof", "b=b"}));
    EXPECT_EQ(options.configuration, "tesk.toml");
}

// What follows is not taken for another namespace.
TEST(ModelOptions, TakeOneNamespaceEachTime) {
    EXPECT_EQ(parseModel({"--namespace", "root/a=a.mof", "other"}).namespaces,
              Texts{"root/a=a.mof"});
}

TEST(ModelOptions, RefuseWhatIsNoNamespace) {
    ModelOptions options;
    Command command;
    Commands::addModelOptions(command, options);
    EXPECT_EQ(parseOptions(command, {"--namespace", "root/a"}),
              "--namespace: \"root/a\" is not a namespace with a MOF file or directory, such as "
              "\"root/cimv2=schema/cim.mof\"");
    EXPECT_EQ(parseOptions(command, {"--namespace"}), "--namespace: 1 required NAME=PATH missing");
}

TEST(OutputFormat, IsTextUnlessJsonIsAskedFor) {
    EXPECT_EQ(parseFormat({}), "text");
    EXPECT_EQ(parseFormat({"--format=text"}), "text");
    EXPECT_EQ(parseFormat({"--format=json"}), "json");
}

TEST(OutputFormat, RefusesAnythingElse) {
    for (const std::string format : {"xml", "JSON", "1"}) {
        EXPECT_EQ(parseFormat({"--format=" + format}),
                  "--format: \"" + format + "\" is neither text nor json");
    }
    EXPECT_EQ(parseFormat({"--format"}), "--format: 1 required FORMAT missing");
}

TEST(Jobs, AreOneTo1024) {
    EXPECT_EQ(parseJobs({}), "7");
    EXPECT_EQ(parseJobs({"--jobs=1"}), "1");
    EXPECT_EQ(parseJobs({"--jobs", "1024"}), "1024");
    for (const std::string number : {"0", "1025", "-1", "x", "1.5"}) {
        EXPECT_EQ(parseJobs({"--jobs=" + number}),
                  "--jobs: Value " + number + " not in range 1 to 1024");
    }
}

}  // namespace

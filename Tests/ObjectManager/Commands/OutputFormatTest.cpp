#include <CLI/CLI.hpp>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/OutputFormat.h"

namespace {

using Commands::OutputFormat;

// The format after a command line was parsed, or what is wrong with it.
std::string parse(std::vector<std::string> arguments) {
    CLI::App command;
    auto format = OutputFormat::kText;
    Commands::addFormatOption(command, format);
    try {
        command.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return error.what();
    }
    return format == OutputFormat::kJson ? "json" : "text";
}

TEST(OutputFormat, IsTextUnlessJsonIsAskedFor) {
    EXPECT_EQ(parse({}), "text");
    EXPECT_EQ(parse({"--format=text"}), "text");
    EXPECT_EQ(parse({"--format=json"}), "json");
}

TEST(OutputFormat, RefusesAnythingElse) {
    EXPECT_EQ(parse({"--format=xml"}), "--format: \"xml\" is neither text nor json");
    EXPECT_EQ(parse({"--format=JSON"}), "--format: \"JSON\" is neither text nor json");
    EXPECT_EQ(parse({"--format=1"}), "--format: \"1\" is neither text nor json");
    EXPECT_EQ(parse({"--format"}), "--format: 1 required FORMAT missing");
}

}  // namespace

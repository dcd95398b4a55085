#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "ObjectManager/Commands/CommandLine.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/ObjectManager/Commands/ParsedCommand.h"

namespace {

using Commands::Command;
using Commands::ParsedCommandLine;
using Texts = std::vector<std::string>;

// A command with an option of each kind.
class CommandOptions : public testing::Test {
  protected:
    CommandOptions() {
        command_.options = {
            {.name = "--flag", .help = "", .target = &flag_},
            {.name = "--text",
             .value = "TEXT",
             .help = "",
             .target = &text_,
             .check = requireShort},
            {.name = "--maybe", .value = "TEXT", .help = "", .target = &maybe_},
            {.name = "--list", .value = "TEXT", .help = "", .target = &list_},
            {.name = "--number",
             .value = "N",
             .help = "",
             .target = &number_,
             .range = {{.least = 2, .most = 4}}},
            {.name = "--taken",
             .value = "TEXT",
             .help = "",
             .target =
                 [this](const auto& value) {
                     requireShort(value);
                     taken_ = value;
                 }},
            {.name = "FIRST", .help = "", .target = &first_},
            {.name = "REST", .help = "", .target = &rest_},
            {.name = "--all", .help = "", .target = &all_, .excludes = "REST"},
        };
    }

    static void requireShort(const std::string& text) {
        if (text.size() > 3)
            throw TeskBaseException("test", "it is too long", CIM_ERR_INVALID_PARAMETER);
    }

    [[nodiscard]] std::string parse(const Texts& arguments) const {
        return parseOptions(command_, arguments);
    }

    bool flag_ = false;
    bool all_ = false;
    std::string text_ = "old";
    std::optional<std::string> maybe_;
    Texts list_;
    unsigned number_ = 3;
    std::string taken_;
    std::string first_;
    Texts rest_;
    Command command_;
};

TEST_F(CommandOptions, KeepTheirValuesWhenTheyAreNotGiven) {
    EXPECT_EQ(parse({}), "");
    EXPECT_FALSE(flag_);
    EXPECT_EQ(text_, "old");
    EXPECT_EQ(maybe_, std::nullopt);
    EXPECT_EQ(list_, Texts());
    EXPECT_EQ(number_, 3U);
}

TEST_F(CommandOptions, TakeWhatIsGiven) {
    EXPECT_EQ(parse({"--flag", "--text", "new", "--maybe", "", "--list", "a", "1", "--list=b", "2",
                     "--number=4", "3", "--taken", "abc"}),
              "");
    EXPECT_TRUE(flag_);
    EXPECT_EQ(text_, "new");
    EXPECT_EQ(maybe_, "");
    EXPECT_EQ(list_, (Texts{"a", "b"}));
    EXPECT_EQ(number_, 4U);
    EXPECT_EQ(taken_, "abc");
    EXPECT_EQ(first_, "1");
    EXPECT_EQ(rest_, (Texts{"2", "3"}));
}

TEST_F(CommandOptions, SayWhatIsWrong) {
    EXPECT_EQ(parse({"--text", "long"}), "--text: it is too long");
    EXPECT_EQ(parse({"--taken", "long"}), "--taken: it is too long");
    EXPECT_EQ(parse({"--text"}), "--text: 1 required TEXT missing");
    EXPECT_EQ(parse({"--number", "1"}), "--number: Value 1 not in range 2 to 4");
    EXPECT_EQ(parse({"--number", "5"}), "--number: Value 5 not in range 2 to 4");
    EXPECT_EQ(parse({"a", "b", "--all"}), "REST excludes --all");
    EXPECT_EQ(parse({"--unknown=1"}), "there is no option \"--unknown\"");
    command_.options.front().isRequired = true;
    EXPECT_EQ(parse({"a"}), "--flag is required");
}

class CommandLine : public testing::Test {
  protected:
    [[nodiscard]] ParsedCommandLine parse(const Texts& arguments) {
        const auto run = [](int status) { return [status] { return status; }; };
        return Commands::parseCommandLine(
            {.name = "program",
             .version = "1.2",
             .summary = "What it does",
             .details = "Examples",
             .commands =
                 {{.name = "one", .summary = "First", .details = "", .options = {}, .run = run(11)},
                  {.name = "two",
                   .summary = "Second",
                   .details = "More",
                   .options = {},
                   .run = run(12)}}},
            arguments, output_, errors_);
    }

    std::ostringstream output_;
    std::ostringstream errors_;
};

TEST_F(CommandLine, GivesTheActionOfTheCommand) {
    EXPECT_EQ(parse({"one"}).action(), 11);
    EXPECT_EQ(parse({"two"}).action(), 12);
    EXPECT_EQ(output_.str() + errors_.str(), "");
}

TEST_F(CommandLine, AnswersQuestionsAboutTheProgram) {
    const ParsedCommandLine parsed = parse({"--version"});
    EXPECT_FALSE(parsed.action);
    EXPECT_EQ(parsed.status, 0);
    EXPECT_EQ(output_.str(), "program 1.2\n");
    output_.str("");
    EXPECT_EQ(parse({"two", "--help"}).status, 0);
    EXPECT_TRUE(output_.str().starts_with("Second\nUsage: program two [OPTIONS]\n"));
    EXPECT_TRUE(output_.str().ends_with("\nMore\n")) << output_.str();
    EXPECT_EQ(errors_.str(), "");
}

TEST_F(CommandLine, WrongUsageHasStatus2) {
    for (const Texts& arguments : {Texts{}, Texts{"three"}, Texts{"one", "x"}, Texts{"--frob"}}) {
        const ParsedCommandLine parsed = parse(arguments);
        EXPECT_FALSE(parsed.action);
        EXPECT_EQ(parsed.status, 2);
    }
    EXPECT_EQ(output_.str(), "");
    EXPECT_EQ(errors_.str(),
              "program: no command is given; there are: one, two\n"
              "\"program --help\" tells more.\n"
              "program: there is no command \"three\"; there are: one, two\n"
              "\"program --help\" tells more.\n"
              "program one: The following argument was not expected: x\n"
              "\"program one --help\" tells more.\n"
              "program: there is no option \"--frob\"\n"
              "\"program --help\" tells more.\n");
}

}  // namespace

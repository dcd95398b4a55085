// The completion of command lines in bash, without its package of helpers.

#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>

#include "Tests/EndToEnd/HelpText.h"
#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

// Does what bash does when TAB is pressed: cuts the line into words, at "=" and ":" too, and prints
// what it is offered.
constexpr const char* kComplete = R"(#!/bin/bash
source ')" COMPLETION_FILE R"(' || exit
complete -p tesk > /dev/null || exit
shopt -s extglob
COMP_LINE=$1
COMP_POINT=${2:-${#1}}
COMP_WORDS=()
rest=${COMP_LINE:0:COMP_POINT}
while [[ -n $rest ]]; do
  rest=${rest##+( )}
  case $rest in
    \'*) quoted=${rest#\'} word="'${quoted%%\'*}'" ;;
    [=:]*) word=${rest%%[!=:]*} ;;
    *) word=${rest%%[ =:]*} ;;
  esac
  [[ $rest == "$word"* ]] || word=$rest
  COMP_WORDS+=("$word")
  rest=${rest#"$word"}
done
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
COMPREPLY=(not set)
_tesk
status=$?
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
exit $status
)";

class Completion : public testing::Test {
  protected:
    Completion() {
        (void)directory_.write("complete", kComplete);
        (void)directory_.write("acme.mof", "class ACME_Fan {}; class ACME_Pump : ACME_Fan {};");
        (void)directory_.write("tesk.toml", "[namespaces]\n\"root/acme\" = \"acme.mof\"\n");
        (void)directory_.write("two words.mof", "class TWO_Words {};");
        std::filesystem::create_directory(directory_ / "output");
    }

    // What is offered at the end of the line, or at the cursor.
    [[nodiscard]] std::set<std::string> offered(const std::string& line,
                                                const std::string& cursor = "") const {
        const std::string escaped = replaced(line, "'", "'\\''");
        const ProgramRun run =
            runProgram("cd '" + directory_.path().string() +
                       "' && bash --norc --noprofile complete '" + escaped + "' " + cursor);
        EXPECT_EQ(run.errors, "") << line;
        std::istringstream lines(run.output);
        std::set<std::string> words;
        for (std::string word; std::getline(lines, word);)
            EXPECT_TRUE(words.insert(word).second) << word << " is offered twice";
        return words;
    }

    // The same with a program that is not on the path of commands.
    [[nodiscard]] std::set<std::string> offeredBehindProgram(const std::string& line) const {
        return offered(PROGRAM " " + line);
    }

    const TemporaryDirectory directory_;
};

using Words = std::set<std::string>;

std::set<std::string> namesOf(const std::set<std::string>& options) {
    std::set<std::string> names;
    for (const std::string& option : options)
        names.insert(withoutValue(option));
    return names;
}

TEST_F(Completion, OffersTheCommandsOfTheHelp) {
    const std::vector<std::string> commands = commandsOfHelp();
    EXPECT_EQ(offered("tesk "), Words(commands.begin(), commands.end()));
    EXPECT_EQ(offered("tesk c"), (Words{"check", "classes"}));
    EXPECT_EQ(offered("tesk x"), Words());
    EXPECT_EQ(offered("tesk -"), namesOf(optionsOfHelp("")));
}

TEST_F(Completion, OffersTheOptionsOfTheHelpForEachCommand) {
    for (const std::string& command : commandsOfHelp())
        EXPECT_EQ(offered("tesk " + command + " --"), namesOf(optionsOfHelp(command))) << command;
    EXPECT_EQ(offered("tesk frob --"), Words());
    EXPECT_EQ(offered("tesk export --o"), Words{"--output"});
    EXPECT_EQ(offered("tesk export --output o --pr"), Words{"--prune"});
}

TEST_F(Completion, OffersValuesThatAreKnown) {
    EXPECT_EQ(offered("tesk check --format "), (Words{"json", "text"}));
    EXPECT_EQ(offered("tesk classes --format j"), Words{"json"});
    EXPECT_EQ(offered("tesk check --format=j"), Words{"json"});
    EXPECT_EQ(offered("tesk check --format="), (Words{"json", "text"}));
    EXPECT_EQ(offered("tesk serve --log-level "), (Words{"1", "2", "3", "4"}));
    EXPECT_EQ(offered("tesk check --jobs "), Words());
    EXPECT_EQ(offered("tesk serve --listen 127.0.0.1:"), Words());
}

TEST_F(Completion, OffersFiles) {
    EXPECT_EQ(offered("tesk serve --config te"), Words{"tesk.toml"});
    EXPECT_EQ(offered("tesk serve --config=te"), Words{"tesk.toml"});
    EXPECT_EQ(offered("tesk serve --password-file ac"), Words{"acme.mof"});
    EXPECT_EQ(offered("tesk passwd ac"), Words{"acme.mof"});
    EXPECT_EQ(offered("tesk passwd --delete ac"), Words{"acme.mof"});
    EXPECT_EQ(offered("tesk passwd acme.mof "), Words());
    EXPECT_EQ(offered("tesk serve --config 'two w"), Words{"two words.mof"});
}

TEST_F(Completion, OffersDirectorysAloneForDocuments) {
    EXPECT_EQ(offered("tesk export --output "), Words{"output"});
}

TEST_F(Completion, OffersTheFilesOfANamespace) {
    EXPECT_EQ(offered("tesk check --namespace root/acme=ac"), Words{"acme.mof"});
    EXPECT_EQ(offered("tesk check --namespace=root/acme=ac"), Words{"acme.mof"});
    EXPECT_EQ(offered("tesk check --namespace root/acme=output"), Words{"output"});
    EXPECT_EQ(offered("tesk check --namespace ac"), Words());
}

TEST_F(Completion, OffersNamespacesAndClassesOfTheSampleModel) {
    EXPECT_EQ(offeredBehindProgram("classes "), (Words{"interop", "root/cimv2"}));
    EXPECT_EQ(offeredBehindProgram("classes root/cimv2 TSK_S"),
              (Words{"TSK_Server", "TSK_StoragePath"}));
    EXPECT_EQ(offeredBehindProgram("classes interop TSK_S"), Words());
    EXPECT_EQ(offeredBehindProgram("classes root/cimv2 TSK_Server "), Words());
    EXPECT_EQ(offeredBehindProgram("export --output documents TSK_Server TSK_E"),
              Words{"TSK_Everything"});
    EXPECT_EQ(offeredBehindProgram("check TSK_S"), Words());
}

TEST_F(Completion, OffersClassesOfTheModelThatIsGiven) {
    const Words both = {"ACME_Fan", "ACME_Pump"};
    for (const std::string model :
         {"--namespace root/acme=acme.mof", "--namespace=root/acme=acme.mof", "--config tesk.toml",
          "--format json --config=tesk.toml"}) {
        EXPECT_EQ(offeredBehindProgram("classes " + model + " "), Words{"root/acme"}) << model;
        EXPECT_EQ(offeredBehindProgram("classes " + model + " root/acme "), both) << model;
    }
    EXPECT_EQ(offeredBehindProgram("classes --namespace two='two words.mof' two "),
              Words{"TWO_Words"});
    EXPECT_EQ(offeredBehindProgram("export --config tesk.toml --output o ACME_P"),
              Words{"ACME_Pump"});
    EXPECT_EQ(offeredBehindProgram("classes --config missing.toml "), Words());
}

TEST_F(Completion, RunsNothingThatALineWouldRunOnlyWhenItIsEntered) {
    EXPECT_EQ(offeredBehindProgram("classes --config $(touch${IFS}ran) "), Words());
    EXPECT_EQ(offeredBehindProgram("classes --config `touch${IFS}ran` "), Words());
    EXPECT_FALSE(std::filesystem::exists(directory_ / "ran"));
    EXPECT_EQ(offered("no-such-program classes "), Words());
}

TEST_F(Completion, LooksAtTheLineUpToTheCursor) {
    EXPECT_EQ(offered("tesk cheXYZ --format json", "8"), Words{"check"});
}

}  // namespace

// What the program answers without looking at a class.

#include <gtest/gtest.h>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"

namespace {

void expectRefusal(const std::string& arguments, const std::string& message) {
    const ProgramRun run = runTesk(arguments);
    EXPECT_EQ(run.end, "status 2") << arguments;
    EXPECT_EQ(run.output, "") << arguments;
    EXPECT_EQ(run.errors, message) << arguments;
}

// The usual form: what is wrong with a command, and where to read more.
void expectUsageError(const std::string& command, const std::string& arguments,
                      const std::string& message) {
    expectRefusal(command + " " + arguments, "tesk " + command + ": " + message + "\n\"tesk " +
                                                 command + " --help\" tells more.\n");
}

TEST(CommandLine, HelpShowsTheCommandsAndExamples) {
    for (const char* const option : {"--help", "-h"}) {
        const ProgramRun run = runTesk(option);
        EXPECT_EQ(run.end, "status 0");
        EXPECT_EQ(run.errors, "");
        EXPECT_TRUE(run.output.starts_with(
            "A small CIM object manager that publishes WSDL and XML Schema documents of its "
            "classes\n"
            "Usage: tesk [OPTIONS] COMMAND\n"))
            << run.output;
        for (const char* const text :
             {"\nCommands:\n  serve ", "\n  export ", "\n  check ", "\n  classes ", "\n  passwd ",
              "\nExamples:\n  tesk serve\n  tesk export --output "})
            EXPECT_NE(run.output.find(text), std::string::npos) << text;
    }
}

TEST(CommandLine, HelpOfEachCommandHasExamples) {
    for (const std::string command : {"serve", "export", "check", "classes", "passwd"}) {
        const ProgramRun run = runTesk(command + " --help");
        EXPECT_EQ(run.end, "status 0");
        EXPECT_EQ(run.errors, "");
        EXPECT_NE(run.output.find("\nUsage: tesk " + command + " [OPTIONS]"), std::string::npos)
            << run.output;
        EXPECT_NE(run.output.find("\nExamples:\n  tesk " + command), std::string::npos)
            << run.output;
    }
}

TEST(CommandLine, VersionIsThatOfTheProject) {
    const ProgramRun run = runTesk("--version");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.output, "tesk " TESK_VERSION "\n");
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, ACommandMustBeGiven) {
    const std::string commands =
        "; there are: serve, export, import, check, diff, classes, passwd\n\"tesk --help\" tells "
        "more.\n";
    expectRefusal("", "tesk: no command is given" + commands);
    expectRefusal("frob", "tesk: there is no command \"frob\"" + commands);
    expectRefusal("''", "tesk: there is no command \"\"" + commands);
    expectRefusal("Check", "tesk: there is no command \"Check\"" + commands);
}

TEST(CommandLine, OptionsAndArgumentsMustBeKnown) {
    expectRefusal("--frob", "tesk: there is no option \"--frob\"\n\"tesk --help\" tells more.\n");
    expectUsageError("check", "--frob", "there is no option \"--frob\"");
    expectUsageError("check", "--nmaespace a=b", "there is no option \"--nmaespace\"");
    expectUsageError("check", "--nmaespace=a=b", "there is no option \"--nmaespace\"");
    expectUsageError("check", "cimv2", "The following argument was not expected: cimv2");
    expectUsageError("check", "classes", "The following argument was not expected: classes");
    expectUsageError("classes", "a b c", "The following argument was not expected: c");
}

TEST(CommandLine, AMistypedOptionIsToldBeforeWhatIsMissingThen) {
    expectUsageError("export", "--ouput documents", "there is no option \"--ouput\"");
    expectUsageError("export", "", "--output is required");
    expectUsageError("passwd", "--delte users", "there is no option \"--delte\"");
}

TEST(CommandLine, OptionsNeedValues) {
    for (const std::string command : {"check", "classes"}) {
        expectUsageError(command, "--format", "--format: 1 required FORMAT missing");
        expectUsageError(command, "--namespace", "--namespace: 1 required NAME=PATH missing");
    }
    expectUsageError("check", "--jobs", "--jobs: 1 required N missing");
}

TEST(CommandLine, ValuesOfOptionsAreChecked) {
    for (const std::string command : {"check", "classes"}) {
        expectUsageError(command, "--format xml", "--format: \"xml\" is neither text nor json");
        expectUsageError(command, "--namespace root/cimv2",
                         "--namespace: \"root/cimv2\" is not a namespace with a MOF file or "
                         "directory, such as \"root/cimv2=schema/cim.mof\"");
        for (const std::string name : {"", "root//cimv2", "a?b"}) {
            expectUsageError(
                command, "--namespace '" + name + "=mof/'",
                "--namespace: \"" + name +
                    "\" is not the name of a namespace, such as \"root/cimv2\": letters, "
                    "digits, \"_\", \"-\" and \".\", in parts with a \"/\" between "
                    "them");
        }
    }
    expectUsageError(
        "serve", "--listen localhost",
        "--listen: \"localhost\" is not an address with a port, such as \"127.0.0.1:5985\", "
        "\"0.0.0.0:5985\" or \"[::1]:5985\"");
    for (const std::string command : {"check", "export"}) {
        for (const std::string value : {"0", "1025", "-1", "x", "1.5"})
            expectUsageError(command, "--jobs " + value,
                             "--jobs: Value " + value + " not in range 1 to 1024");
    }
}

TEST(CommandLine, OutputThatCannotBeWrittenIsAnError) {
    for (const char* const arguments :
         {"--help", "--version", "check --help", "check", "check --format json", "classes",
          "classes root/cimv2 CIM_System"}) {
        for (const char* const target : {" > /dev/full", " >&-"}) {
            const ProgramRun run = runTesk(std::string(arguments) + target);
            EXPECT_EQ(run.end, "status 1") << arguments << target;
            EXPECT_EQ(run.output, "");
            EXPECT_EQ(run.errors, "tesk: the output cannot be written\n") << arguments << target;
        }
    }
}

// The reader of a pipe has seen enough.
TEST(CommandLine, EndsWithTheReaderOfItsOutput) {
    const ProgramRun run =
        runProgram("bash -c \"'" PROGRAM "' classes | true; exit \\${PIPESTATUS[0]}\"");
    EXPECT_TRUE(run.end == "signal 13" || run.end == "status 0") << run.end;
    EXPECT_EQ(run.errors, "");
}

}  // namespace

// The commands that end by themselves, with each of their calls into the C library failing once. A
// command does what it would have done without, or says what it could not do and why; what it has
// written is complete.

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <unistd.h>

#include "Tests/EndToEnd/Faults/Faults.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/StandInCimServer.h"

namespace {

namespace fs = std::filesystem;

class CommandFaults : public FaultTest, public testing::WithParamInterface<std::string> {
  protected:
    static constexpr const char* kOldClasses =
        "Qualifier Key : boolean = false, Scope(property);\n"
        "class TST_A { [Key] uint32 Id; };\n"
        "class TST_Gone { string Text; };\n";
    static constexpr const char* kNewClasses =
        "Qualifier Key : boolean = false, Scope(property);\n"
        "class TST_A { [Key] uint32 Id; string Added; };\n"
        "class TST_B : TST_A { uint32 Stop([Key(false)] uint32 When); };\n";

    [[nodiscard]] ProgramRun run(const std::vector<std::string>& arguments, const Fault& fault,
                                 const std::string& input = "/dev/null") const {
        std::vector<std::string> command = {PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        RunningProgram program(command, [&] {
            inject(fault);
            dup2(open(input.c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        });
        return program.waitForEnd();
    }

    // A run without a fault.
    [[nodiscard]] ProgramRun run(const std::vector<std::string>& arguments,
                                 const std::string& input = "/dev/null") const {
        return run(arguments, {.call = "", .number = 0}, input);
    }

    // One that has done what it should tells so by its status; one that has not says why, unless
    // the fault took the means to do so.
    void expectToldFailure(const ProgramRun& run, const Fault& fault) const {
        ASSERT_EQ(run.end, "status 1") << run.errors;
        const bool couldTell = report().find("/errors\n") == std::string::npos;
        EXPECT_TRUE(!couldTell || namesReason(run.errors + run.output, fault)) << "not said why:\n"
                                                                               << run.errors;
    }
};

class CheckFaults : public CommandFaults {};

std::string withoutTime(const std::string& text) {
    return std::regex_replace(text, std::regex(", [0-9]+\\.[0-9][0-9] s:"), ", TIME:");
}

TEST_P(CheckFaults, CheckFindsTheSameOrSaysWhyNot) {
    const std::string model = directory_.write("test.mof", kNewClasses);
    const std::vector<std::string> arguments = {"check", "--jobs", "2", "--namespace",
                                                "root/test=" + model};
    const ProgramRun right = run(arguments);
    ASSERT_EQ(right.end, "status 0") << right.errors;
    failEachCall(GetParam(), [&](const Fault& fault) {
        const ProgramRun outcome = run(arguments, fault);
        if (outcome.end == "status 0")
            EXPECT_EQ(withoutTime(outcome.output), withoutTime(right.output));
        else
            expectToldFailure(outcome, fault);
    });
}

class ExportFaults : public CommandFaults {
  protected:
    // What an export of these classes makes of the directory.
    void exportClasses(const char* classes, const fs::path& output) const {
        directory_.write("test.mof", classes);
        const ProgramRun done = run(arguments(output));
        ASSERT_EQ(done.end, "status 0") << done.errors;
    }

    [[nodiscard]] std::vector<std::string> arguments(const fs::path& output) const {
        return {"export",   "--prune",     "--jobs",
                "2",        "--namespace", "root/test=" + (directory_ / "test.mof").string(),
                "--output", output};
    }

    // "old" and "new" for files that are whole.
    [[nodiscard]] std::map<std::string, std::string> states(const DirectoryContent& content) const {
        std::map<std::string, std::string> states;
        for (const auto& [name, text] : content) {
            const bool isNew = after_.contains(name) && after_.at(name) == text;
            const bool isOld = before_.contains(name) && before_.at(name) == text;
            states[name] = isNew ? "new" : isOld ? "old" : "neither old nor new:\n" + text;
        }
        return states;
    }

    // Nothing half, nothing unknown, and nothing gone but what shall go.
    void expectWholeFiles(const DirectoryContent& content) const {
        for (const auto& [name, state] : states(content)) {
            const bool isWhole = state == "new" || state == "old" ||
                                 (name == kList && listsOldAndNew(content.at(name)));
            EXPECT_TRUE(isWhole) << name << " is " << state;
        }
        for (const auto& [name, text] : before_)
            EXPECT_TRUE(content.contains(name) || !after_.contains(name)) << name << " is lost";
    }

    // While documents are written, those that are there and those to come are listed.
    [[nodiscard]] bool listsOldAndNew(const std::string& list) const {
        std::set<std::string> lines;
        for (const std::string& part : {before_.at(kList), after_.at(kList)}) {
            std::istringstream stream(part);
            for (std::string line; std::getline(stream, line);)
                lines.insert(line);
        }
        std::string both;
        for (const std::string& line : lines)
            both += line + "\n";
        return list == both;
    }

    static constexpr const char* kList = "root/test/.tesk-export";

    DirectoryContent before_;
    DirectoryContent after_;
};

TEST_P(ExportFaults, ExportLeavesCompleteFilesAndSaysWhatIsMissing) {
    ASSERT_NO_FATAL_FAILURE(exportClasses(kOldClasses, directory_ / "old"));
    ASSERT_NO_FATAL_FAILURE(exportClasses(kNewClasses, directory_ / "new"));
    before_ = contentOf(directory_ / "old");
    after_ = contentOf(directory_ / "new");
    const fs::path output = directory_ / "out";
    failEachCall(GetParam(), [&](const Fault& fault) {
        fs::remove_all(output);
        fs::copy(directory_ / "old", output, fs::copy_options::recursive);
        const ProgramRun outcome = run(arguments(output), fault);
        const DirectoryContent now = contentOf(output);
        // What cannot be removed stays.
        if (!report().starts_with("unlink"))
            expectWholeFiles(now);
        if (outcome.end == "status 0")
            EXPECT_EQ(states(now), states(after_)) << outcome.output << outcome.errors;
        else
            expectToldFailure(outcome, fault);
    });
}

class PasswdFaults : public CommandFaults {};

TEST_P(PasswdFaults, PasswdKeepsTheFileOrChangesItWhole) {
    const std::string bob =
        "bob:$6$rounds=1000$saltsalt$LAV5VE5Y7w1d73x1mFNspYWUpazfmwv2SoepNXNKJ/otop/"
        "Zok96Hr8Q13LEv0DRY/x8v0/crpIjl8NJSAqXV/\n";
    const std::regex withAlice("alice:\\$[^\n:]{50,}\n");
    const std::string secret = directory_.write("secret", "secret\n");
    fs::create_directory(directory_ / "users");
    const fs::path file = directory_ / "users" / "users";
    failEachCall(GetParam(), [&](const Fault& fault) {
        fs::remove_all(directory_ / "users");
        fs::create_directory(directory_ / "users");
        directory_.write("users/users", bob);
        fs::permissions(file, fs::perms(0600));
        const ProgramRun outcome = run({"passwd", file, "alice"}, fault, secret);
        DirectoryContent now = contentOf(directory_ / "users");
        const std::string text = std::exchange(now["users"], "");
        ASSERT_TRUE(text.starts_with(bob)) << text;
        const std::string added = text.substr(bob.size());
        if (outcome.end == "status 0") {
            EXPECT_TRUE(std::regex_match(added, withAlice)) << text;
        } else {
            EXPECT_TRUE(added.empty() || std::regex_match(added, withAlice)) << text;
            expectToldFailure(outcome, fault);
        }
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
        if (!report().starts_with("unlink")) {
            EXPECT_EQ(now, DirectoryContent({{"users", ""}}));
        }
    });
}

class ServerFaults : public CommandFaults {};

TEST_P(ServerFaults, ClassesOfAServerAreAllThereOrItIsSaidWhyNot) {
    StandInCimServer server;
    server.setClasses("root/test",
                      "<CLASS NAME=\"TST_A\"><PROPERTY NAME=\"Id\" TYPE=\"string\">"
                      "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>"
                      "</PROPERTY></CLASS><CLASS NAME=\"TST_B\" SUPERCLASS=\"TST_A\"/>");
    const std::vector<std::string> arguments = {"classes", "--server", server.url(), "--namespace",
                                                "root/test"};
    const ProgramRun right = run(arguments);
    ASSERT_EQ(right.end, "status 0") << right.errors;
    // Those before the command line is read are the same for all commands.
    const std::size_t before =
        countCalls(GetParam(), [&](const Fault& fault) { (void)run({"--version"}, fault); });
    failEachCall(
        GetParam(),
        [&](const Fault& fault) {
            const ProgramRun outcome = run(arguments, fault);
            if (outcome.end == "status 0")
                EXPECT_EQ(outcome.output, right.output);
            // libcurl takes some allocations that fail for other failures.
            else if (outcome.errors.find("tesk: " + server.url() + ": ") != std::string::npos)
                EXPECT_EQ(outcome.end, "status 1");
            else
                expectToldFailure(outcome, fault);
        },
        before + 1);
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(Each, CheckFaults, testing::ValuesIn(commandCalls()), nameOf);
INSTANTIATE_TEST_SUITE_P(Each, ExportFaults, testing::ValuesIn(commandCalls()), nameOf);
INSTANTIATE_TEST_SUITE_P(Each, PasswdFaults, testing::ValuesIn(commandCalls()), nameOf);
INSTANTIATE_TEST_SUITE_P(Each, ServerFaults, testing::Values("allocation", "recv", "send"), nameOf);

}  // namespace

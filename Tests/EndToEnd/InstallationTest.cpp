// The program with what lies beside it, somewhere else than where it was built.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

class Installation : public testing::Test {
  protected:
    Installation() {
        std::filesystem::create_directories(prefix_ / TESK_PROGRAM_DIR);
        std::filesystem::copy(PROGRAM, prefix_ / TESK_PROGRAM_DIR "/tesk");
    }

    void copyProviders() const {
        std::filesystem::create_directories(prefix_ / TESK_PROVIDERS_DIR);
        std::filesystem::copy(BUILD_DIRECTORY "/" TESK_PROVIDERS_DIR, prefix_ / TESK_PROVIDERS_DIR,
                              std::filesystem::copy_options::recursive);
    }
    void copyModels() const {
        std::filesystem::create_directories((prefix_ / TESK_MODELS_DIR).parent_path());
        std::filesystem::copy(MODELS_DIRECTORY, prefix_ / TESK_MODELS_DIR,
                              std::filesystem::copy_options::recursive);
    }

    [[nodiscard]] ProgramRun run(const std::string& command) const {
        ProgramRun run = runProgram("cd '" + prefix_.path().string() + "' && " + command);
        run.errors = replaced(run.errors, prefix_.path().string(), "PREFIX");
        return run;
    }

    const TemporaryDirectory prefix_;
};

TEST_F(Installation, MayBeMoved) {
    copyProviders();
    copyModels();
    const ProgramRun run = this->run(TESK_PROGRAM_DIR "/tesk check");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find("59 classes in 2 namespaces, 118 documents, "), std::string::npos)
        << run.output;
}

TEST_F(Installation, IsFoundThroughALinkToTheProgram) {
    copyModels();
    const TemporaryDirectory other;
    std::filesystem::create_symlink(prefix_ / TESK_PROGRAM_DIR "/tesk", other / "tesk");
    const ProgramRun run =
        this->run("PATH='" + other.path().string() + "' && tesk classes interop");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.starts_with("interop  (21 classes)\n")) << run.output;
}

TEST_F(Installation, NeedsTheSampleModelForNothingElse) {
    copyProviders();
    const ProgramRun without = run(TESK_PROGRAM_DIR "/tesk classes");
    EXPECT_EQ(without.end, "status 1");
    EXPECT_EQ(without.output, "");
    EXPECT_EQ(without.errors, "PREFIX/" TESK_MODELS_DIR
                              "/cimv2/cimv2.mof: error: cannot be read: No such file or "
                              "directory\n"
                              "PREFIX/" TESK_MODELS_DIR
                              "/interop/interop.mof: error: cannot be read: No such file or "
                              "directory\n"
                              "tesk: the classes have errors and are not used\n");
    (void)prefix_.write("a.mof", "class TST_A {};");
    const ProgramRun with = run(TESK_PROGRAM_DIR "/tesk check --namespace root/test=a.mof");
    EXPECT_EQ(with.end, "status 0");
    EXPECT_EQ(with.errors, "");
    EXPECT_TRUE(with.output.starts_with("1 class in 1 namespace, 2 documents, ")) << with.output;
}

// Where the log says it too, with the time.
TEST_F(Installation, NeedsTheProvidersToMakeDocuments) {
    copyModels();
    const ProgramRun without = run(TESK_PROGRAM_DIR "/tesk check");
    EXPECT_EQ(without.end, "status 1");
    EXPECT_EQ(without.output, "");
    EXPECT_NE(without.errors.find("\ntesk: PREFIX/" TESK_PROVIDERS_DIR
                                  ": Reading the directory failed: No such file or directory\n"),
              std::string::npos)
        << without.errors;
    std::filesystem::create_directories(prefix_ / TESK_PROVIDERS_DIR);
    const ProgramRun empty = run(TESK_PROGRAM_DIR "/tesk check");
    EXPECT_EQ(empty.end, "status 1");
    EXPECT_EQ(empty.output, "");
    EXPECT_EQ(empty.errors, "tesk: PREFIX/" TESK_PROVIDERS_DIR ": holds no provider\n");
    EXPECT_EQ(run(TESK_PROGRAM_DIR "/tesk classes").end, "status 0");
}

}  // namespace

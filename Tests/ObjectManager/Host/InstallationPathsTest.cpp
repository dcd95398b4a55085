#include <filesystem>
#include <gtest/gtest.h>

#include "ObjectManager/Host/InstallationPaths.h"

namespace {

// The program is in the directory "bin" of an installation.
TEST(InstallationPaths, StandBesideTheDirectoryOfTheProgram) {
    const std::filesystem::path prefix =
        std::filesystem::canonical(PROGRAM_FILE).parent_path().parent_path();
    const Host::InstallationPaths paths = Host::InstallationPaths::ofThisProgram();
    EXPECT_EQ(paths.installation, prefix / TESK_INSTALLATION_DIR);
    EXPECT_EQ(paths.models, prefix / TESK_MODELS_DIR);
}

}  // namespace

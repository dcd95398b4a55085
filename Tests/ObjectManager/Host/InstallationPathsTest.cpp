#include <filesystem>
#include <gtest/gtest.h>

#include "ObjectManager/Host/InstallationPaths.h"

namespace {

// The program lies in the folder "bin" of an installation.
TEST(InstallationPaths, LieBesideTheFolderOfTheProgram) {
    const std::filesystem::path prefix =
        std::filesystem::canonical(PROGRAM_FILE).parent_path().parent_path();
    const Host::InstallationPaths folders = Host::InstallationPaths::ofThisProgram();
    EXPECT_EQ(folders.installation, prefix / TESK_INSTALLATION_DIR);
    EXPECT_EQ(folders.models, prefix / TESK_MODELS_DIR);
}

}  // namespace

#include "ObjectManager/Host/ProgramFolders.h"

namespace Host {

ProgramFolders ProgramFolders::ofThisProgram() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix = program.parent_path().parent_path();
    return {.installation = prefix / "lib/tesk", .models = prefix / "share/tesk/models"};
}

}  // namespace Host

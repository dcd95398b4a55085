#include "ObjectManager/Host/InstallationPaths.h"

namespace Host {

InstallationPaths InstallationPaths::ofThisProgram() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix =
        (program.parent_path() / TESK_PROGRAM_TO_PREFIX).lexically_normal();
    return {.installation = prefix / TESK_INSTALLATION_DIR, .models = prefix / TESK_MODELS_DIR};
}

}  // namespace Host

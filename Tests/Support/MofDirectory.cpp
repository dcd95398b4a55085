#include "Tests/Support/MofDirectory.h"

#include <filesystem>

std::string MofDirectory::write(std::string_view name, std::string_view mof) const {
    std::filesystem::create_directories((directory_ / name).parent_path());
    return directory_.write(name, mof);
}

std::string MofDirectory::path(std::string_view name) const {
    return directory_ / name;
}

std::string MofDirectory::shown(const std::vector<Mof::Diagnostic>& diagnostics) const {
    std::string text;
    for (const Mof::Diagnostic& diagnostic : diagnostics)
        text += diagnostic.toString();
    const std::string prefix = directory_.path().string() + "/";
    for (auto at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at))
        text.erase(at, prefix.size());
    return text;
}

#include "Tests/Support/MofFolder.h"

#include <filesystem>

std::string MofFolder::write(std::string_view name, std::string_view mof) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    return folder_.write(name, mof);
}

std::string MofFolder::path(std::string_view name) const {
    return folder_ / name;
}

std::string MofFolder::shown(const std::vector<Mof::Diagnostic>& diagnostics) const {
    std::string text;
    for (const Mof::Diagnostic& diagnostic : diagnostics)
        text += diagnostic.toString();
    const std::string prefix = folder_.path().string() + "/";
    for (auto at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at))
        text.erase(at, prefix.size());
    return text;
}

#include "Tests/Support/DirectoryContent.h"

#include <fstream>
#include <iterator>

std::string contentOfFile(const std::filesystem::path& file) {
    std::ifstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(file, std::ios::binary);
    stream.exceptions(std::ios::badbit);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

DirectoryContent contentOf(const std::filesystem::path& directory) {
    DirectoryContent content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        std::string& text = content[entry.path().lexically_relative(directory).string()];
        if (entry.is_symlink())
            text = "-> " + std::filesystem::read_symlink(entry.path()).string();
        else
            text = entry.is_directory() ? "(directory)" : contentOfFile(entry.path());
    }
    return content;
}

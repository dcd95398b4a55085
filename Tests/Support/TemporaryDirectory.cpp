#include "Tests/Support/TemporaryDirectory.h"

#include <cstdlib>
#include <fstream>
#include <system_error>

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "tesk-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryDirectory::write(std::string_view name,
                                                std::string_view content) const {
    std::filesystem::path file = path_ / name;
    std::ofstream stream(file, std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream << content;
    return file;
}

std::filesystem::path TemporaryDirectory::copy(const std::filesystem::path& file,
                                               std::string_view name) const {
    std::filesystem::path target = path_ / name;
    std::filesystem::copy_file(file, target);
    return target;
}

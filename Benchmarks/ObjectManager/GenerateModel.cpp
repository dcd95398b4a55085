// Writes a model of as many classes as one likes, for measurements: see writeGeneratedModel.

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string_view>

#include "Benchmarks/Support/GeneratedModel.h"

int main(int argc, char** argv) {
    std::size_t count = 0;
    const std::string_view number = argc == 3 ? argv[2] : "";
    const auto [end, error] = std::from_chars(number.begin(), number.end(), count);
    if (number.empty() || error != std::errc() || end != number.end()) {
        std::fputs("Usage: GenerateModel DIRECTORY CLASSES\n", stderr);
        return 2;
    }
    try {
        std::filesystem::create_directories(argv[1]);
        std::puts(writeGeneratedModel(argv[1], count).c_str());
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "GenerateModel: %s\n", exception.what());
        return 1;
    }
    return 0;
}

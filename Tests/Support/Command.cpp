#include "Tests/Support/Command.h"

#include <cstdio>
#include <memory>
#include <stdexcept>

std::string outputOf(const std::string& command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"),
                                                               &pclose);
    if (pipe == nullptr)
        throw std::runtime_error("Cannot run " + command);
    std::string output;
    for (int character = std::fgetc(pipe.get()); character != EOF;
         character = std::fgetc(pipe.get()))
        output += static_cast<char>(character);
    return output;
}

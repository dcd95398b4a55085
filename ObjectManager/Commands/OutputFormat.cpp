#include "ObjectManager/Commands/OutputFormat.h"

#include <CLI/CLI.hpp>
#include <string>

namespace Commands {

namespace {

constexpr const char* kText = "text";
constexpr const char* kJson = "json";

std::string faultOf(const std::string& text) {
    return text == kText || text == kJson ? "" : "\"" + text + "\" is neither text nor json";
}

}  // namespace

void addFormatOption(CLI::App& command, OutputFormat& format) {
    const auto set = [&format](const std::string& text) {
        format = text == kJson ? OutputFormat::kJson : OutputFormat::kText;
    };
    command
        .add_option_function<std::string>("--format", set,
                                          "How the result is written: text (default) or json")
        ->check(faultOf)
        ->type_name("FORMAT");
}

}  // namespace Commands

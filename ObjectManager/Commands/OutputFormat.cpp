#include "ObjectManager/Commands/OutputFormat.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace Commands {

void addFormatOption(CLI::App& command, OutputFormat& format) {
    static const std::map<std::string, OutputFormat> kFormats = {{"text", OutputFormat::kText},
                                                                 {"json", OutputFormat::kJson}};
    command.add_option("--format", format, "How the result is written: text (default) or json")
        ->transform(CLI::CheckedTransformer(kFormats).description(""))
        ->type_name("FORMAT");
}

}  // namespace Commands

#include "ObjectManager/Commands/SharedOptions.h"

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

OutputFormat parseFormat(const std::string& text) {
    if (text == "text")
        return OutputFormat::kText;
    if (text == "json")
        return OutputFormat::kJson;
    throw TeskBaseException("Commands::formatOption",
                            TSKString(Base::quoted(text) + " is neither text nor json"),
                            CIM_ERR_INVALID_PARAMETER);
}

}  // namespace

void addModelOptions(Command& command, ModelOptions& options) {
    command.options.push_back(
        {.name = "--namespace",
         .value = "NAME=PATH",
         .help = "A namespace and its classes: a MOF file with what it includes, or a directory. "
                 "May be given several times; without it the sample model is used",
         .target = &options.namespaces,
         .check = Configuration::parseNamespaceOption});
    command.options.push_back(
        {.name = "--include-path",
         .value = "DIR",
         .help = "A directory with MOF files that others include. Only files below these "
                 "directories and below those of the namespaces are read. May be given several "
                 "times",
         .target = &options.includePath});
    command.options.push_back({.name = "--config",
                               .value = "FILE",
                               .help = "The configuration file",
                               .target = &options.configuration});
}

Option publishedAddressOption(std::optional<std::string>& address) {
    return {.name = "--published-address",
            .value = "URL",
            .help =
                "Where documents say that the service is, such as "
                "https://cim.example.org:5986",
            .target = &address,
            .check = Configuration::parsePublishedAddress};
}

Option formatOption(OutputFormat& format) {
    return {.name = "--format",
            .value = "FORMAT",
            .help = "The output format: text (default) or json",
            .target = [&format](const std::string& text) { format = parseFormat(text); }};
}

Option jobsOption(unsigned& jobs, const std::string& help) {
    return {.name = "--jobs",
            .value = "N",
            .help = help + ", 1 to 1024 (default: one for each processor)",
            .target = &jobs,
            .range = {{.least = 1, .most = 1024}}};
}

}  // namespace Commands

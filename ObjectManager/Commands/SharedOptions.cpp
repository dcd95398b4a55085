#include "ObjectManager/Commands/SharedOptions.h"

#include <utility>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Commands::SharedOptions", TSKString(message),
                            CIM_ERR_INVALID_PARAMETER);
}

OutputFormat parseFormat(const std::string& text) {
    if (text == "text")
        return OutputFormat::kText;
    if (text == "json")
        return OutputFormat::kJson;
    fail(Base::quoted(text) + " is neither text nor json");
}

void checkNamespaces(const ModelOptions& options) {
    try {
        Base::NameSet names;
        std::vector<Loading::NamespaceSource> sources;
        sources.reserve(options.namespaces.size());  // whose names the set refers to
        for (const std::string& text : options.namespaces) {
            if (options.server.url.empty()) {
                (void)Configuration::parseNamespaceOption(text);
                continue;
            }
            sources.push_back(Configuration::parseServerNamespaceOption(text));
            if (!names.insert(sources.back().name).second)
                fail("the namespace " + Base::quoted(sources.back().name) + " is given twice");
        }
    } catch (const TeskBaseException& error) {
        fail(std::string("--namespace: ") + error.getMessage().data());
    }
}

// Base addresses are inserted into documents as they are, so an ampersand, which RFC 9110 allows in
// a host, would break them.
void requireHost(const std::string& host) {
    if (!Http::isHostWithPort(host)) {
        throw TeskBaseException(
            "Commands::addAddressOptions",
            TSKString(Base::quoted(host) + " is not a host with an optional port, such as "
                                           "localhost:5985"),
            CIM_ERR_INVALID_PARAMETER);
    }
}

}  // namespace

void addModelOptions(Command& command, ModelOptions& options) {
    command.options.push_back(
        {.name = "--namespace",
         .value = "NAME=PATH",
         .help = "A namespace and its classes: a MOF file with what it includes, or a directory. "
                 "May be given several times; without it the sample model is used. With --server: "
                 "NAME, or NAME=REMOTE where the server calls it REMOTE; without it all "
                 "namespaces that the server names",
         .target = &options.namespaces});
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
    addServerOptions(command, options.server);
    command.options.push_back(
        {.name = "--server-class",
         .value = "CLASS",
         .help = "Only the server's classes of this name, in any case, and their superclasses; * "
                 "and ? stand for any characters. May be given several times",
         .target = &options.serverClasses,
         .needs = kServerOption});
    command.check = [&options] { checkNamespaces(options); };
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

void addAddressOptions(Command& command, AddressArguments& arguments) {
    command.options.push_back(
        {.name = "--host",
         .value = "HOST[:PORT]",
         .help = "Where the documents say that the service is, over HTTP (default: localhost:5985)",
         .target = &arguments.host,
         .check = requireHost});
    Option publishedAddress = publishedAddressOption(arguments.published);
    publishedAddress.excludes = "--host";
    command.options.push_back(std::move(publishedAddress));
}

Host::PublishedAddress addressOf(const AddressArguments& arguments,
                                 const Configuration::Settings& settings) {
    if (arguments.published)
        return Configuration::parsePublishedAddress(*arguments.published);
    if (arguments.host)
        return {.host = *arguments.host};
    return settings.server.publishedAddress.value_or(
        Host::PublishedAddress{.host = "localhost:5985"});
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

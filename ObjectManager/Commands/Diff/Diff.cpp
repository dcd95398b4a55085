#include <cstddef>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Diff/AcceptedChanges.h"
#include "ObjectManager/Commands/Diff/VersionDiff.h"
#include "ObjectManager/Commands/Diff/VersionDocuments.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/SharedOptions.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

struct DiffOptions {
    std::string before;
    std::string after;  // empty: what `model` names
    ModelOptions model;
    std::string accepted;  // a file; none when empty
    AddressArguments address;
    OutputFormat format = OutputFormat::kText;
    unsigned jobs = defaultJobs();
};

constexpr const char* kDetails =
    R"(OLD and NEW are each a directory that "tesk export" has written, or MOF: a file with what it
includes, or a directory, as PATH for the namespace root/cimv2 or as NAME=PATH for another one.
Without NEW, OLD is compared with the classes that --namespace, --config or --server name.

Exit status: 0 without breaking changes, 1 with one that is not accepted, or when an accepted
change is not there any more.

Examples:
  tesk diff cim_schema_2.40.0.mof cim_schema_2.41.0.mof
  tesk diff documents root/acme=mof/acme.mof --format json
  tesk diff documents --server https://cim.example.com --namespace root/cimv2
  tesk diff documents mof/ --accepted accepted-changes.txt)";

TeskBaseException failure(const std::string& reason) {
    return {"tesk diff", TSKString(reason), CIM_ERR_FAILED};
}

void checkSources(const DiffOptions& options) {
    const ModelOptions& model = options.model;
    const bool namesModel =
        !model.namespaces.empty() || !model.configuration.empty() || !model.server.url.empty();
    if (!options.after.empty() && namesModel)
        throw failure("NEW cannot be given together with --namespace, --config or --server");
    if (options.after.empty() && !namesModel)
        throw failure("NEW is missing, or --namespace, --config or --server in its place");
}

// What an argument names.
VersionDocuments readVersion(const std::string& argument, const DiffOptions& options) {
    namespace fs = std::filesystem;
    std::error_code error;
    const bool isPath = fs::exists(argument, error);
    if (isPath && fs::is_directory(argument)) {
        VersionDocuments exported = readExport(argument);
        if (!exported.empty())
            return exported;
    }
    const bool isNamed = !isPath && argument.find('=') != std::string::npos;
    if (!isPath && !isNamed)
        throw failure(Base::quoted(argument) + " is not there");
    ModelOptions mof;
    mof.namespaces = {isNamed ? argument : "root/cimv2=" + argument};
    mof.includePath = options.model.includePath;
    return makeDocuments(mof, options.address, options.jobs);
}

AcceptedChanges readAccepted(const std::string& file) {
    if (file.empty())
        return {};
    try {
        constexpr std::size_t kMaxBytes = std::size_t{16} << 20U;
        return {file, Base::readFile(file, kMaxBytes)};
    } catch (const std::system_error& error) {
        throw failure(file + " cannot be read: " + error.code().message());
    }
}

int runDiff(const DiffOptions& options) {
    AcceptedChanges accepted = readAccepted(options.accepted);
    const VersionDocuments before = readVersion(options.before, options);
    const VersionDocuments after = options.after.empty()
                                       ? makeDocuments(options.model, options.address, options.jobs)
                                       : readVersion(options.after, options);
    const VersionDiff diff = compareVersions(before, after, accepted, options.jobs);
    std::cout << (options.format == OutputFormat::kJson ? toJson(diff) : toText(diff));
    const std::vector<std::string> unused = accepted.unused();
    for (const std::string& text : unused)
        std::cerr << text << "\n";
    return diff.countBreaking() == 0 && unused.empty() ? 0 : 1;
}

}  // namespace

Command diffCommand() {
    const auto options = std::make_shared<DiffOptions>();
    Command command = {.name = "diff",
                       .summary = "Says what changes for clients between two versions of a model",
                       .details = kDetails,
                       .options = {{.name = "OLD",
                                    .help = "The version that clients know",
                                    .target = &options->before,
                                    .isRequired = true},
                                   {.name = "NEW",
                                    .help = "The version that they will meet",
                                    .target = &options->after}},
                       .run = [options] { return runDiff(*options); }};
    addModelOptions(command, options->model);
    command.options.push_back(
        {.name = "--accepted",
         .value = "FILE",
         .help = "Changes that do not count: a rule and a place a line, such as type-changed "
                 "root/cimv2:CIM_Foo.Bar",
         .target = &options->accepted});
    addAddressOptions(command, options->address);
    command.options.push_back(formatOption(options->format));
    command.options.push_back(jobsOption(options->jobs, "How many classes are compared at once"));
    command.check = [options, checkModel = command.check] {
        checkModel();
        checkSources(*options);
    };
    return command;
}

}  // namespace Commands

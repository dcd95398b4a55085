#include <cstddef>
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
    std::string after;
    VersionOptions version = {.includePath = {}, .host = kDefaultHost, .jobs = defaultJobs()};
    std::string accepted;  // a file; none when empty
    OutputFormat format = OutputFormat::kText;
};

constexpr const char* kDetails =
    R"(OLD and NEW are each a directory that "tesk export" has written, or MOF: a file with what it
includes, or a directory, as PATH for the namespace root/cimv2 or as NAME=PATH for another one.

Exit status: 0 without breaking changes, 1 with one that is not accepted, or when an accepted
change is not there any more.

Examples:
  tesk diff cim_schema_2.40.0.mof cim_schema_2.41.0.mof
  tesk diff documents root/acme=mof/acme.mof --format json
  tesk diff documents mof/ --accepted accepted-changes.txt)";

AcceptedChanges readAccepted(const std::string& file) {
    if (file.empty())
        return {};
    try {
        constexpr std::size_t kMaxBytes = std::size_t{16} << 20U;
        return {file, Base::readFile(file, kMaxBytes)};
    } catch (const std::system_error& error) {
        throw TeskBaseException("Commands::runDiff",
                                TSKString(file + " cannot be read: " + error.code().message()),
                                CIM_ERR_FAILED);
    }
}

int runDiff(const DiffOptions& options) {
    AcceptedChanges accepted = readAccepted(options.accepted);
    const VersionDocuments before = readVersion(options.before, options.version);
    const VersionDocuments after = readVersion(options.after, options.version);
    const VersionDiff diff = compareVersions(before, after, accepted, options.version.jobs);
    std::cout << (options.format == OutputFormat::kJson ? toJson(diff) : toText(diff));
    const std::vector<std::string> unused = accepted.unused();
    for (const std::string& text : unused)
        std::cerr << text << "\n";
    return diff.countBreaking() == 0 && unused.empty() ? 0 : 1;
}

}  // namespace

Command diffCommand() {
    const auto options = std::make_shared<DiffOptions>();
    return {.name = "diff",
            .summary = "Says what changes for clients between two versions of a model",
            .details = kDetails,
            .options = {{.name = "OLD",
                         .help = "The version that clients know",
                         .target = &options->before,
                         .isRequired = true},
                        {.name = "NEW",
                         .help = "The version that they will meet",
                         .target = &options->after,
                         .isRequired = true},
                        includePathOption(options->version.includePath),
                        {.name = "--accepted",
                         .value = "FILE",
                         .help = "Changes that do not count: a rule and a place a line, such as "
                                 "type-changed root/cimv2:CIM_Foo.Bar",
                         .target = &options->accepted},
                        hostOption(options->version.host,
                                   "The service that documents of MOF name, to compare them with "
                                   "an export"),
                        formatOption(options->format),
                        jobsOption(options->version.jobs, "How many classes are compared at once")},
            .run = [options] { return runDiff(*options); }};
}

}  // namespace Commands

#include <cstdio>
#include <iostream>
#include <memory>

#include "ObjectManager/Commands/Check/DocumentCheck.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/ProgressLine.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"

namespace Commands {

namespace {

struct CheckOptions {
    ModelOptions model;
    OutputFormat format = OutputFormat::kText;
    unsigned jobs = defaultJobs();
};

constexpr const char* kDetails =
    R"(Exit status: 0 when every document is well-formed, 1 when one is not or cannot be made.

Examples:
  tesk check
  tesk check --namespace root/cimv2=cim_schema/cim_schema_2.41.0.mof
  tesk check --namespace root/acme=mof/ --format json)";

CheckResult checkAll(const CheckOptions& options) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(options.model);
    const Host::ProviderHost host(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(host.manager(), {.host = "localhost"});
    ProgressLine progress(stderr, repository->countClasses(), "classes");
    return checkDocuments(*repository, client, options.jobs, [&] { progress.step(); });
}

int runCheck(const CheckOptions& options) {
    const CheckResult result = checkAll(options);
    std::cout << (options.format == OutputFormat::kJson ? toJson(result) : toText(result));
    return result.countErrors() == 0 ? 0 : 1;
}

}  // namespace

Command checkCommand() {
    const auto options = std::make_shared<CheckOptions>();
    Command command = {
        .name = "check",
        .summary = "Makes both documents of every class and reports what is wrong with them",
        .details = kDetails,
        .options = {},
        .run = [options] { return runCheck(*options); }};
    addModelOptions(command, options->model);
    command.options.push_back(formatOption(options->format));
    command.options.push_back(jobsOption(options->jobs, "How many classes are checked at once"));
    return command;
}

}  // namespace Commands

#include "ObjectManager/Commands/Check.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>

#include "ObjectManager/Commands/DocumentCheck.h"
#include "ObjectManager/Commands/ModelOptions.h"
#include "ObjectManager/Commands/OutputFormat.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/ProgressBar.h"
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

CheckResult checkAll(const CheckOptions& options) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(settingsOf(options.model));
    const Host::ProviderHost host(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(host.manager(), "localhost");
    ProgressBar progress(stderr, repository->countClasses(), "classes");
    return checkDocuments(*repository, client, options.jobs, [&] { progress.step(); });
}

int runCheck(const CheckOptions& options) {
    const CheckResult result = checkAll(options);
    std::cout << (options.format == OutputFormat::kJson ? toJson(result) : toText(result));
    return result.countErrors() == 0 ? 0 : 1;
}

constexpr const char* kFooter =
    R"(Exit status: 0 when every document is well-formed, 1 when one is not or cannot be made.

Examples:
  tesk check
  tesk check --namespace root/cimv2=cim_schema/cim_schema_2.41.0.mof
  tesk check --namespace root/acme=mof/ --format json)";

}  // namespace

void addCheckCommand(CLI::App& program, Action& action) {
    CLI::App* const command = program.add_subcommand(
        "check", "Makes both documents of every class and reports what is wrong with them");
    command->footer(kFooter);
    const auto options = std::make_shared<CheckOptions>();
    addModelOptions(*command, options->model);
    addFormatOption(*command, options->format);
    command
        ->add_option("--jobs", options->jobs,
                     "How many classes are checked at once, 1 to 1024 (default: as many as the "
                     "machine runs at once)")
        ->check(CLI::Range(1U, 1024U).description(""))
        ->type_name("N");
    command->callback([&action, options] { action = [options] { return runCheck(*options); }; });
}

}  // namespace Commands

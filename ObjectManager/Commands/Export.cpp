#include "ObjectManager/Commands/Export.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ObjectManager/Commands/ClassSelection.h"
#include "ObjectManager/Commands/DocumentExport.h"
#include "ObjectManager/Commands/ModelOptions.h"
#include "ObjectManager/Commands/NumberText.h"
#include "ObjectManager/Commands/OutputFolder.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/ProgressBar.h"
#include "ObjectManager/Commands/StopSignals.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Http/HostField.h"
#include "ObjectManager/Index/IndexPage.h"

namespace Commands {

namespace {

struct ExportOptions {
    ModelOptions model;
    std::string output;
    std::string host = "localhost:5985";  // the port that WS-Management has over HTTP
    unsigned jobs = defaultJobs();
    bool prune = false;
    std::vector<std::string> classes;  // names and patterns; empty for all
};

DocumentExportResult writeDocuments(const ExportOptions& options,
                                    const TSKSmrPtr<Repository::ClassRepository>& repository,
                                    const std::vector<ClassSelection>& selections,
                                    const OutputFolder& output, const StopSignals& stopSignals) {
    const Host::ProviderHost host(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(host.manager(), TSKString(options.host));
    ProgressBar progress(stderr, countDocuments(selections), "documents");
    DocumentExportOptions exportOptions;
    exportOptions.jobs = options.jobs;
    exportOptions.prune = options.prune;
    exportOptions.isStopped = [&stopSignals] { return stopSignals.received() != 0; };
    exportOptions.onDocumentDone = [&progress] { progress.step(); };
    return exportDocuments(selections, client, output, exportOptions);
}

int reportStop(int signal, const DocumentExportResult& result, const OutputFolder& output) {
    std::cerr << "tesk: stopped by " << StopSignals::nameOf(signal) << " after "
              << groupedDigits(result.written + result.unchanged) << " of "
              << counted(result.documents, "document", "documents") << "; those in "
              << output.path().string() << " are complete\n";
    return StopSignals::exitStatus(signal);
}

int runExport(const ExportOptions& options) {
    // A file over the limit of the process is an error like a full disk, not the end.
    (void)std::signal(SIGXFSZ, SIG_IGN);
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(settingsOf(options.model));
    const bool all = options.classes.empty();
    const std::vector<ClassSelection> selections =
        all ? selectAllClasses(*repository) : selectClasses(*repository, options.classes);
    // Until here there is nothing to bring to a good end.
    const StopSignals stopSignals;
    const OutputFolder output = OutputFolder::create(options.output);
    const DocumentExportResult result =
        writeDocuments(options, repository, selections, output, stopSignals);
    std::cerr << failuresText(result);
    if (result.isStopped)
        return reportStop(stopSignals.received(), result, output);
    if (all)
        output.put("index.html", Index::makeIndexPage(*repository));
    std::cout << summaryText(result);
    return result.failures.empty() ? 0 : 1;
}

// An ampersand, which RFC 9110 allows in a host, would break the documents: base addresses are
// inserted as they are.
std::string faultOfHost(const std::string& host) {
    if (Http::isHostField(host))
        return {};
    return "\"" + host + "\" is no host with an optional port, such as localhost:5985";
}

void addExportOptions(CLI::App& command, ExportOptions& options) {
    command.add_option("--output", options.output, "The folder; made if it is missing")
        ->required()
        ->type_name("DIR");
    command
        .add_option("--host", options.host,
                    "Where the documents say that the service is (default: localhost:5985)")
        ->check(CLI::Validator(faultOfHost, ""))
        ->type_name("HOST[:PORT]");
    addModelOptions(command, options.model);
    command
        .add_option("--jobs", options.jobs,
                    "How many documents are made at once, 1 to 1024 (default: as many as the "
                    "machine runs at once)")
        ->check(CLI::Range(1U, 1024U).description(""))
        ->type_name("N");
    CLI::Option* const classes = command.add_option(
        "CLASS", options.classes,
        "Only the classes of this name, in any case; * and ? stand for any characters");
    command
        .add_flag("--prune", options.prune,
                  "Also removes the documents of classes that are gone from the folders of the "
                  "namespaces, and what an export that was killed left half-written, and no other "
                  "file")
        ->excludes(classes);
}

constexpr const char* kFooter =
    R"(Writes NAMESPACE/CLASS.wsdl and NAMESPACE/CLASS.xsd below DIR, as they are served at HOST,
and DIR/index.html, a page that lists them; when a CLASS is given, the page is left as it is.
A file that would not change is left alone.

Exit status: 0 when everything is written, 1 when something is not, 130 after Ctrl-C.

Examples:
  tesk export --output documents
  tesk export --output documents --host wsman.example.com:5985 --prune
  tesk export --output documents --namespace root/cimv2=schema/cim.mof 'CIM_Storage*')";

}  // namespace

void addExportCommand(CLI::App& program, Action& action) {
    CLI::App* const command =
        program.add_subcommand("export", "Writes the documents of classes into a folder");
    command->footer(kFooter);
    const auto options = std::make_shared<ExportOptions>();
    addExportOptions(*command, *options);
    command->callback([&action, options] { action = [options] { return runExport(*options); }; });
}

}  // namespace Commands

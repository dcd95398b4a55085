#include <csignal>
#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Base/Signals.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Export/ClassSelection.h"
#include "ObjectManager/Commands/Export/DocumentExport.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/ProgressLine.h"
#include "ObjectManager/Commands/ServerOptions.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/SearchData.h"

namespace Commands {

namespace {

struct ExportOptions {
    ModelOptions model;
    std::string output;
    AddressArguments address;
    unsigned jobs = defaultJobs();
    bool prune = false;
    std::vector<std::string> classes;  // names and patterns; empty for all
};

constexpr const char* kDetails =
    R"(Writes NAMESPACE/CLASS.wsdl and NAMESPACE/CLASS.xsd below DIR, as they are served at HOST,
and for people DIR/index.html, a page that lists and searches them, with DIR/search.js, and a page
NAMESPACE/CLASS.html for each class; when a CLASS is given, the pages are left as they are.
A file that would not change is left alone.

Exit status: 0 when everything is written, 1 when something is not, 130 after Ctrl-C.

Examples:
  tesk export --output documents
  tesk export --output documents --host wsman.example.com:5985 --prune
  tesk export --output documents --server https://cim.example.com --namespace root/cimv2
  tesk export --output documents --namespace root/cimv2=schema/cim.mof 'CIM_Storage*')";

void addExportOptions(Command& command, ExportOptions& options) {
    command.options.push_back({.name = "--output",
                               .value = "DIR",
                               .help = "The directory; made if it is missing",
                               .target = &options.output,
                               .isRequired = true});
    addAddressOptions(command, options.address);
    addModelOptions(command, options.model);
    command.options.push_back(jobsOption(options.jobs, "How many documents are made at once"));
    command.options.push_back(
        {.name = "CLASS",
         .help = "Only the classes of this name, in any case; * and ? stand for any characters",
         .target = &options.classes});
    command.options.push_back(
        {.name = "--prune",
         .help =
             "Also removes, from the directories of the namespaces, the documents of classes "
             "that are gone, as far as exports have written them, and the half-written files of "
             "an export that was killed; no other files",
         .target = &options.prune,
         .excludes = "CLASS"});
}

// Puts the page of each selected class into the directory of its namespace. A class whose name
// cannot be that of a file is left out; exportDocuments() reports it.
void exportPages(const ClassSelection& selection, const Base::OutputDirectory& directory,
                 std::string_view service, unsigned jobs, const std::function<bool()>& isStopped) {
    const Pages::ClassRelations relations(*selection.nameSpace);
    workInParallel(selection.classes.size(), jobs, [&](std::size_t number) {
        const Repository::CimClass& cimClass = *selection.classes[number];
        const std::string file = std::string(cimClass.name()) + kPageExtension;
        if (isStopped() || !Base::OutputDirectory::validateName(file).empty())
            return;
        directory.put(file,
                      Pages::makeClassPage(cimClass, relations, Pages::Layout::kExported, service));
    });
}

DocumentExportResult writeDocuments(const ExportOptions& options,
                                    const Host::PublishedAddress& address,
                                    const TSKSmrPtr<Repository::ClassRepository>& repository,
                                    const std::vector<ClassSelection>& selections,
                                    const Base::OutputDirectory& output,
                                    const Base::StopSignals& stopSignals) {
    const Host::ProviderHost host(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(host.manager(), address);
    ProgressLine progress(stderr, countDocuments(selections), "documents");
    DocumentExportOptions exportOptions;
    exportOptions.jobs = options.jobs;
    exportOptions.prune = options.prune;
    exportOptions.isStopped = [&stopSignals] { return stopSignals.received() != 0; };
    exportOptions.onDocumentDone = [&progress] { progress.step(); };
    // Pages lead to each other, so there are all or none.
    if (options.classes.empty()) {
        exportOptions.exportPages = [&](const ClassSelection& selection,
                                        const Base::OutputDirectory& directory) {
            exportPages(selection, directory, address.toString(), options.jobs,
                        exportOptions.isStopped);
        };
    }
    return exportDocuments(selections, client, output, exportOptions);
}

int reportStop(int signal, const DocumentExportResult& result,
               const Base::OutputDirectory& output) {
    std::cerr << "tesk: stopped by " << Base::StopSignals::nameOf(signal) << " after "
              << Base::withSeparators(result.written + result.unchanged) << " of "
              << Base::counted(result.documents, "document", "documents") << "; those in "
              << output.path().string() << " are complete\n";
    return Base::StopSignals::exitStatus(signal);
}

int runExport(const ExportOptions& options) {
    // A file that is larger than the process may write is an error like a full disk.
    (void)std::signal(SIGXFSZ, SIG_IGN);
    ModelOptions model = options.model;
    askForPassword(model.server);
    const Configuration::Settings settings = readSettings(model, std::cerr);
    const TSKSmrPtr<Repository::ClassRepository> repository =
        loadModel(settings, std::cerr).repository;
    const bool all = options.classes.empty();
    const std::vector<ClassSelection> selections =
        all ? selectAllClasses(*repository) : selectClasses(*repository, options.classes);
    // Before this, a signal may end the program at once: nothing is written yet.
    const Base::StopSignals stopSignals;
    Base::OutputDirectory output = Base::OutputDirectory::create(options.output, "export");
    output.lock();
    const DocumentExportResult result = writeDocuments(
        options, addressOf(options.address, settings), repository, selections, output, stopSignals);
    std::cerr << failuresText(result);
    if (result.isStopped)
        return reportStop(stopSignals.received(), result, output);
    if (all) {
        output.put(kSearchFile, Pages::makeSearchData(*repository, Pages::Layout::kExported));
        output.put(kIndexFile, Pages::makeIndexPage(*repository, Pages::Layout::kExported));
    }
    std::cout << summaryText(result);
    return result.failures.empty() ? 0 : 1;
}

}  // namespace

Command exportCommand() {
    const auto options = std::make_shared<ExportOptions>();
    Command command = {.name = "export",
                       .summary = "Writes the documents of classes into a directory",
                       .details = kDetails,
                       .options = {},
                       .run = [options] { return runExport(*options); }};
    addExportOptions(command, *options);
    return command;
}

}  // namespace Commands

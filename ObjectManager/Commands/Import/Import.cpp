#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Base/NamePattern.h"
#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Base/Signals.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/ServerOptions.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "ObjectManager/Loading/ImportDirectory.h"
#include "ObjectManager/Loading/ImportFiles.h"
#include "ObjectManager/Loading/ServerReader.h"
#include "ObjectManager/Loading/ServerSource.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

struct ImportArguments {
    ServerArguments server;
    std::string output;
    std::vector<std::string> namespaces;  // "NAME[=REMOTE]" each; none for all of the server
    std::vector<std::string> classes;     // names and patterns; empty for all
    bool prune = false;
};

constexpr const char* kDetails =
    R"(Writes NAMESPACE/CLASS.mof, a file a class, below DIR, NAMESPACE/qualifiers.mof, and
NAMESPACE/main.mof, which includes them in an order that any MOF compiler takes. A file that would
not change is left alone. Superclasses of a CLASS come along.

Exit status: 0 when everything is written, 1 when something is not, 130 after Ctrl-C.

Examples:
  tesk import --server https://cim.example.com --server-user ada --output classes
  tesk import --server http://localhost --output classes --namespace root/cimv2 'CIM_Storage*'
  tesk serve --namespace root/cimv2=classes/root/cimv2/main.mof)";

void addImportOptions(Command& command, ImportArguments& arguments) {
    command.options.push_back({.name = "--output",
                               .value = "DIR",
                               .help = "The directory; made if it is missing",
                               .target = &arguments.output,
                               .isRequired = true});
    addServerOptions(command, arguments.server);
    std::ranges::find(command.options, std::string(kServerOption), &Option::name)->isRequired =
        true;
    command.options.push_back(
        {.name = "--namespace",
         .value = "NAME[=REMOTE]",
         .help = "A namespace of the server, which calls it REMOTE if the names differ. May be "
                 "given several times; without it, all that the server names",
         .target = &arguments.namespaces,
         .check = Configuration::parseServerNamespaceOption});
    command.options.push_back(
        {.name = "CLASS",
         .help = "Only the classes of this name, in any case, and their superclasses; * and ? "
                 "stand for any characters",
         .target = &arguments.classes});
    command.options.push_back(
        {.name = "--prune",
         .help = "Also removes, from the directories of the namespaces, files that are not part "
                 "of this import, as far as imports have written them, and the half-written files "
                 "of an import that was killed; no other files",
         .target = &arguments.prune});
}

// What is read of a server, and how much it is.
struct Reading {
    std::vector<Loading::ImportedNamespace> namespaces;
    std::size_t classes = 0;
};

// Makes files of what a server has.
class Reader {
  public:
    explicit Reader(const std::vector<std::string>& patterns)
        : unused_(patterns.begin(), patterns.end()), hasPatterns_(!patterns.empty()) {}

    void add(const Loading::ServerNamespace& read) {
        const Mof::Compilation& compilation = read.content.compilation;
        report(compilation.diagnostics);
        for (const Mof::ClassDeclaration& declaration : compilation.classes)
            markAsUsed(declaration.name.text);
        // Patterns are for the namespaces that have such classes.
        if (compilation.classes.empty() && hasPatterns_)
            return;
        reading_.classes += compilation.classes.size();
        reading_.namespaces.push_back(
            {.name = read.source.name, .files = Loading::importFiles(compilation)});
    }

    static void report(const std::vector<Mof::Diagnostic>& diagnostics) {
        for (const Mof::Diagnostic& diagnostic : diagnostics)
            std::cerr << diagnostic.toString();
    }

    // What was read, once.
    [[nodiscard]] Reading take() {
        if (unused_.empty())
            return std::move(reading_);
        std::vector<std::string> names;
        for (const std::string& pattern : unused_)
            names.push_back(Base::quoted(pattern));
        throw TeskBaseException("Commands::runImport",
                                TSKString("the server has no class " + Base::joined(names, ", ") +
                                          "; nothing is written"),
                                CIM_ERR_NOT_FOUND);
    }

  private:
    void markAsUsed(const TSKString& className) {
        std::erase_if(unused_, [&](const std::string& pattern) {
            return Base::NamePattern(pattern).fits(className.data());
        });
    }

    std::set<std::string> unused_;  // patterns that have fitted no class so far
    bool hasPatterns_;
    Reading reading_;
};

std::vector<Loading::NamespaceSource> sourcesOf(const ImportArguments& arguments) {
    std::vector<Loading::NamespaceSource> sources;
    for (const std::string& text : arguments.namespaces)
        sources.push_back(Configuration::parseServerNamespaceOption(text));
    if (sources.empty())
        sources.emplace_back();  // all that the server names
    for (Loading::NamespaceSource& source : sources)
        source.patterns = arguments.classes;
    return sources;
}

Reading readAll(const ImportArguments& arguments) {
    Loading::ServerSource server = serverSource(arguments.server);
    std::cerr << complete(server.options);
    Reader reader(arguments.classes);
    readServer(server,
               {.sources = sourcesOf(arguments),
                .knownDigest = [](const Loading::NamespaceSource&) { return std::nullopt; },
                .onNamespace = [&](Loading::ServerNamespace&& read) { reader.add(read); },
                .onWarning = [](Mof::Diagnostic&& warning) { Reader::report({warning}); }},
               {});
    return reader.take();
}

std::size_t countFiles(const std::vector<Loading::ImportedNamespace>& namespaces) {
    std::size_t count = 0;
    for (const Loading::ImportedNamespace& nameSpace : namespaces)
        count += nameSpace.files.size();
    return count;
}

std::string summaryText(const Reading& reading, const Loading::ImportResult& result,
                        double seconds) {
    return Base::counted(reading.classes, "class", "classes") + " in " +
           Base::counted(reading.namespaces.size(), "namespace", "namespaces") + ", " +
           Base::counted(countFiles(reading.namespaces), "file", "files") + ", " +
           Base::bytesText(result.bytes) + ", " + Base::secondsText(seconds) + ": " +
           Base::withSeparators(result.written) + " written, " +
           Base::withSeparators(result.unchanged) + " unchanged, " +
           Base::withSeparators(result.removed) + " removed\n";
}

int runImport(ImportArguments& arguments) {
    const auto start = std::chrono::steady_clock::now();
    // A file that is larger than the process may write is an error like a full disk.
    (void)std::signal(SIGXFSZ, SIG_IGN);
    askForPassword(arguments.server);
    const Reading reading = readAll(arguments);
    // Before this, a signal may end the program at once: nothing is written yet.
    const Base::StopSignals stopSignals;
    Base::OutputDirectory output = Base::OutputDirectory::create(arguments.output, "import");
    output.lock();
    const Loading::ImportResult result = Loading::writeImport(
        reading.namespaces, output, {.prune = arguments.prune, .isStopped = [&stopSignals] {
                                         return stopSignals.received() != 0;
                                     }});
    for (const std::string& failure : result.failures)
        std::cerr << failure << "\n";
    if (result.isStopped) {
        const int signal = stopSignals.received();
        std::cerr << "tesk: stopped by " << Base::StopSignals::nameOf(signal) << "; the files in "
                  << output.path().string() << " are as they were\n";
        return Base::StopSignals::exitStatus(signal);
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::cout << summaryText(reading, result, seconds.count());
    return result.failures.empty() ? 0 : 1;
}

}  // namespace

Command importCommand() {
    const auto arguments = std::make_shared<ImportArguments>();
    Command command = {.name = "import",
                       .summary = "Writes the classes of a CIM server as MOF files",
                       .details = kDetails,
                       .options = {},
                       .run = [arguments] { return runImport(*arguments); }};
    addImportOptions(command, *arguments);
    return command;
}

}  // namespace Commands

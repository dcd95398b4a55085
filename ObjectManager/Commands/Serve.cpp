#include "ObjectManager/Commands/Serve.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "ObjectManager/Commands/FileStamp.h"
#include "ObjectManager/Commands/LogOutput.h"
#include "ObjectManager/Commands/ModelOptions.h"
#include "ObjectManager/Commands/OptionCheck.h"
#include "ObjectManager/Commands/Reloader.h"
#include "ObjectManager/Commands/Service.h"
#include "ObjectManager/Commands/ServiceLog.h"
#include "ObjectManager/Commands/ServiceUsers.h"
#include "ObjectManager/Commands/SignalQueue.h"
#include "ObjectManager/Configuration/Endpoint.h"
#include "Platform/Util/TeskBaseException.h"

namespace Commands {

namespace {

struct ServeOptions {
    ModelOptions model;
    std::vector<std::string> listen;
    std::optional<std::string> passwordFile;
    std::optional<int> logLevel;
};

// The configuration, and what the command line says in its place.
Configuration::Settings settingsOf(const ServeOptions& options, std::ostream& faults) {
    Configuration::Settings settings = settingsOf(options.model, faults);
    if (!options.listen.empty())
        settings.server.listen.clear();
    for (const std::string& address : options.listen)
        settings.server.listen.push_back(Configuration::parseEndpoint(address));
    settings.security.passwordFile = options.passwordFile.value_or(settings.security.passwordFile);
    settings.log.level = options.logLevel.value_or(settings.log.level);
    return settings;
}

// A path that is worth a try: that of a class which everybody knows, else of any.
std::string samplePath(const Repository::ClassRepository& repository) {
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass("CIM_ComputerSystem");
        if (!cimClass && !nameSpace.classes().empty())
            cimClass = nameSpace.classes().front();
        if (cimClass)
            return "/" + std::string(nameSpace.name()) + "/" + cimClass->name().data() + ".wsdl";
    }
    return "/";
}

// Returns whether it could be said. A password that nobody has read lets nobody in.
[[nodiscard]] bool announce(const Service& service, const Repository::ClassRepository& repository,
                            const ServiceUsers& users) {
    std::cout << "Serving " << contentText(repository) << " on";
    for (const std::string& address : service.addresses())
        std::cout << " " << address;
    std::cout << "\n";
    if (!users.generatedPassword.isEmpty()) {
        std::cout << "There is no password file, so this password is good until the service ends:\n"
                  << "  curl --user " << kTemporaryUser << ":" << users.generatedPassword.view()
                  << " " << service.addresses().front() << samplePath(repository) << "\n";
    }
    std::cout.flush();
    return std::cout.good();
}

void reopenLog(const LogOutput& logOutput) {
    try {
        logOutput.reopen();
    } catch (const TeskBaseException& error) {
        logService(TeskTraceLog::SeverityError,
                   "The log goes on as before: " + std::string(error.getMessage().data()));
    }
}

int stop(Service& service) {
    logService(TeskTraceLog::SeverityInformation, "Stopping");
    if (service.stop())
        return 0;
    // A provider that still runs would use what is taken from it.
    logService(TeskTraceLog::SeverityError, "A provider does not end; the process ends without it");
    (void)std::fflush(nullptr);
    std::_Exit(1);
}

// How often it is looked at whether the password file has changed: whoever was just given a
// password tries it.
constexpr std::chrono::seconds kLookAtPasswordFile{1};

// Each connection is an open file, and a process may have more of them than it has at first.
void raiseLimitOfOpenFiles() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

int runServe(const ServeOptions& options) {
    const Configuration::Settings settings = settingsOf(options, std::cerr);
    raiseLimitOfOpenFiles();
    (void)std::signal(SIGPIPE, SIG_IGN);  // a client that goes away ends nothing
    const SignalQueue signals({SIGTERM, SIGINT, SIGHUP});
    const LogOutput logOutput(settings.log);
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(settings);
    const FileStamp passwordFile = FileStamp::of(settings.security.passwordFile);
    const ServiceUsers users = loadUsers(settings.security);
    Service service(settings, repository, users.users);
    service.start();
    if (!announce(service, *repository, users)) {
        (void)stop(service);
        return 1;  // after the message that the program has for all its output
    }
    Reloader reloader(
        service, [&options](std::ostream& faults) { return settingsOf(options, faults); }, settings,
        passwordFile);
    int signal = 0;
    while ((signal = signals.waitFor(kLookAtPasswordFile)) == 0 || signal == SIGHUP) {
        if (signal == SIGHUP) {
            reopenLog(logOutput);
            reloader.reloadAll();
        }
        reloader.reloadUsersIfChanged();
    }
    // Who presses Ctrl-C twice does not want to wait; what ends reads nothing again.
    (void)std::signal(SIGHUP, SIG_IGN);
    signals.letThrough();
    return stop(service);
}

constexpr const char* kFooter =
    R"(Signals: SIGHUP reads classes and password file again and opens the log file anew, SIGTERM and
SIGINT end the service when running requests are answered. A change of the password file takes
effect by itself, within about a second.

Examples:
  tesk serve
  tesk serve --namespace root/cimv2=schema/cim.mof --password-file users
  tesk serve --config tesk.toml --listen 0.0.0.0:5985 --listen [::]:5985)";

}  // namespace

void addServeCommand(CLI::App& program, Action& action) {
    CLI::App* const command =
        program.add_subcommand("serve", "Serves the documents of all classes over HTTP");
    command->footer(kFooter);
    const auto options = std::make_shared<ServeOptions>();
    addModelOptions(*command, options->model);
    command
        ->add_option("--listen", options->listen,
                     "Where to wait for clients, 127.0.0.1:5985 by default; port 0 takes a free "
                     "one. May be given again")
        ->check(checkedBy(Configuration::parseEndpoint))
        ->type_name("ADDRESS:PORT")
        ->allow_extra_args(false);
    command
        ->add_option("--password-file", options->passwordFile,
                     "Who may ask, see \"tesk passwd\"; without one a password is made and printed")
        ->type_name("FILE");
    command
        ->add_option("--log-level", options->logLevel,
                     "1 errors, 2 warnings, 3 what happens at start and end (default), 4 each "
                     "request")
        ->check(CLI::Range(1, 4).description(""))
        ->type_name("LEVEL");
    command->callback([&action, options] { action = [options] { return runServe(*options); }; });
}

}  // namespace Commands

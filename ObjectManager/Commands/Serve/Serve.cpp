#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <future>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Signals.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/Serve/AdminService.h"
#include "ObjectManager/Commands/Serve/Reloader.h"
#include "ObjectManager/Commands/Serve/Service.h"
#include "ObjectManager/Commands/Serve/ServiceUsers.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

struct ServeOptions {
    ModelOptions model;
    std::optional<unsigned> refresh;  // in seconds
    std::optional<std::string> cache;
    std::vector<std::string> listen;
    std::vector<std::string> tlsListen;
    std::optional<std::string> tlsCertificate;
    std::optional<std::string> tlsKey;
    std::optional<std::string> tlsClientAuthorities;
    std::optional<std::string> adminListen;
    std::optional<std::string> publishedAddress;
    std::optional<std::string> passwordFile;
    std::optional<unsigned> logLevel;
    std::optional<std::string> accessLog;
};

constexpr const char* kDetails =
    R"(Signals: SIGHUP reads the configuration, the classes and the password file again and reopens the
log files; SIGUSR1 only reopens the log files; SIGTERM and SIGINT finish running requests and end
the service. A change of the password file takes effect within about a second.

Examples:
  tesk serve
  tesk serve --namespace root/cimv2=schema/cim.mof --password-file users
  tesk serve --server https://cim.example.com --server-user alice --namespace root/cimv2
  tesk serve --config tesk.toml --listen 0.0.0.0:5985 --listen [::]:5985)";

void addServeOptions(Command& command, ServeOptions& options) {
    addModelOptions(command, options.model);
    command.options.push_back(
        {.name = "--refresh",
         .value = "SECONDS",
         .help = "Ask the CIM servers again after this time; by default only at the start and at "
                 "a reload",
         .target = &options.refresh,
         .range = {{.least = 0, .most = 86'400}}});
    command.options.push_back(
        {.name = "--cache",
         .value = "DIR",
         .help = "Keep there, as MOF, what servers gave last, and start with that when they fail",
         .target = &options.cache});
    command.options.push_back({.name = "--listen",
                               .value = "ADDRESS:PORT",
                               .help = "Where to listen for connections, 127.0.0.1:5985 by "
                                       "default; port 0 takes a free one. May be given several "
                                       "times",
                               .target = &options.listen,
                               .check = Configuration::parseListenAddress});
    command.options.push_back(
        {.name = "--tls-listen",
         .value = "ADDRESS:PORT",
         .help =
             "Where to listen for TLS; then the default of --listen does not hold. May be given "
             "several times",
         .target = &options.tlsListen,
         .check = Configuration::parseListenAddress});
    command.options.push_back(
        {.name = "--tls-certificate",
         .value = "FILE",
         .help = "The certificate in PEM, followed by those that lead to its authority",
         .target = &options.tlsCertificate});
    command.options.push_back({.name = "--tls-key",
                               .value = "FILE",
                               .help = "The key of the certificate in PEM, not encrypted",
                               .target = &options.tlsKey});
    command.options.push_back(
        {.name = "--tls-client-ca",
         .value = "FILE",
         .help = "The authorities of client certificates in PEM; who has one is a user without a "
                 "password",
         .target = &options.tlsClientAuthorities});
    command.options.push_back(
        {.name = "--admin-listen",
         .value = "ADDRESS:PORT",
         .help =
             "Where to serve /healthy, /ready and /metrics, to everybody; a port alone is one of "
             "127.0.0.1",
         .target = &options.adminListen,
         .check = Configuration::parseAdminAddress});
    command.options.push_back(publishedAddressOption(options.publishedAddress));
    command.options.push_back(
        {.name = "--password-file",
         .value = "FILE",
         .help = "The users and their passwords, see \"tesk passwd\"; without it a temporary "
                 "password is generated and printed, or written to a file where standard output "
                 "is not a terminal",
         .target = &options.passwordFile});
    command.options.push_back({.name = "--log-level",
                               .value = "LEVEL",
                               .help = "1 errors, 2 warnings, 3 what happens at start and end "
                                       "(default), 4 each request",
                               .target = &options.logLevel,
                               .range = {{.least = 1, .most = 4}}});
    command.options.push_back({.name = "--access-log",
                               .value = "FILE",
                               .help = "Append a line for each response, in the Combined Log "
                                       "Format; - for standard output",
                               .target = &options.accessLog});
}

bool asksForPasswords(const Configuration::Settings& settings) {
    return settings.security.scheme == Security::Scheme::kBasic;
}

// Where the service listens without TLS by default is not where somebody wants it who names an
// address with TLS alone.
void setAddresses(const ServeOptions& options, Configuration::Settings& settings) {
    const auto set = [](const std::vector<std::string>& texts,
                        std::vector<Http::ListenAddress>& addresses) {
        if (texts.empty())
            return;
        addresses.clear();
        for (const std::string& text : texts)
            addresses.push_back(Configuration::parseListenAddress(text));
    };
    set(options.listen, settings.server.listen);
    set(options.tlsListen, settings.server.tlsListen);
    if (!settings.server.tlsListen.empty() && options.listen.empty() && !settings.isListenSet)
        settings.server.listen.clear();
}

void requireCertificate(const Http::Options& options) {
    const auto require = [](const std::string& file, const char* key, const char* option) {
        if (!file.empty())
            return;
        throw TeskBaseException("tesk serve",
                                TSKString(std::string("an address with TLS needs ") + key +
                                          " in [server], or " + option),
                                CIM_ERR_INVALID_PARAMETER);
    };
    if (options.tlsListen.empty())
        return;
    require(options.tls.certificateFile, "tls_certificate", "--tls-certificate");
    require(options.tls.keyFile, "tls_key", "--tls-key");
}

// What the configuration file says, where the command line does not say otherwise.
Configuration::Settings readSettings(const ServeOptions& options, std::ostream& messages) {
    Configuration::Settings settings = readSettings(options.model, messages);
    setAddresses(options, settings);
    Http::TlsOptions& tls = settings.server.tls;
    tls.certificateFile = options.tlsCertificate.value_or(tls.certificateFile);
    tls.keyFile = options.tlsKey.value_or(tls.keyFile);
    tls.clientAuthorityFile = options.tlsClientAuthorities.value_or(tls.clientAuthorityFile);
    requireCertificate(settings.server);
    if (options.adminListen)
        settings.adminListen = Configuration::parseAdminAddress(*options.adminListen);
    if (options.publishedAddress)
        settings.server.publishedAddress =
            Configuration::parsePublishedAddress(*options.publishedAddress);
    if (options.refresh)
        settings.refresh.interval = std::chrono::seconds(*options.refresh);
    settings.refresh.cacheDirectory = options.cache.value_or(settings.refresh.cacheDirectory);
    settings.security.passwordFile = options.passwordFile.value_or(settings.security.passwordFile);
    // Nobody is asked for a password, so the file need not be there.
    if (!asksForPasswords(settings))
        settings.security.passwordFile.clear();
    if (options.logLevel)
        settings.log.level = static_cast<int>(*options.logLevel);
    settings.log.access = options.accessLog.value_or(settings.log.access);
    return settings;
}

// A path to try first: that of a well-known class if there is one, else of any class.
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

// Writes where the service is, and with which password: one that was generated is shown at a
// terminal only, else `note` is the file that it is in. Returns false if the output failed: the
// user could not know the password then.
[[nodiscard]] bool announce(const Service& service, const Repository::ClassRepository& repository,
                            const ServiceUsers& users, const PasswordNote* note) {
    std::cout << "Serving " << contentText(repository) << " on";
    for (const std::string& address : service.addresses())
        std::cout << " " << address;
    std::cout << "\n";
    if (note != nullptr) {
        std::cout
            << "There is no password file. A password that is valid until the service ends is "
               "in a file:\n"
            << "  curl --user \"$(cat " << Base::shellQuoted(note->path()) << ")\"";
    } else if (!users.generatedPassword.isEmpty()) {
        std::cout << "There is no password file. This password is valid until the service ends:\n"
                  << "  curl --user " << kTemporaryUser << ":" << users.generatedPassword.view();
    }
    if (!users.generatedPassword.isEmpty())
        std::cout << " " << service.addresses().front() << samplePath(repository) << "\n";
    std::cout.flush();
    return std::cout.good();
}

bool isLoopback(const Http::ListenAddress& listen) {
    const auto address = Http::ClientAddress::parse(listen.address);
    return address &&
           Http::isIn({Http::Network::parse("127.0.0.0/8"), Http::Network::parse("::1")}, *address);
}

// Warns of what is allowed but seldom meant.
void warnOfRisks(const Configuration::Settings& settings,
                 const std::vector<std::string>& addresses) {
    const bool isOpenToAll = !asksForPasswords(settings);
    const std::string risk =
        !isOpenToAll
            ? "passwords travel there in clear text: use tls_listen in [server] instead, put a TLS "
              "proxy in front of it, or listen on 127.0.0.1 only"
            : "everybody can read the documents there: set authentication in [server] to "
              "\"basic\", or listen on 127.0.0.1 only";
    std::vector<Http::ListenAddress> atRisk = settings.server.listen;
    if (isOpenToAll)
        atRisk.insert(atRisk.end(), settings.server.tlsListen.begin(),
                      settings.server.tlsListen.end());
    for (std::size_t index = 0; index < atRisk.size(); ++index) {
        if (!isLoopback(atRisk[index])) {
            Base::log("tesk", TeskTraceLog::SeverityWarning,
                      "Other machines reach " + addresses.at(index) + ", and " + risk);
        }
    }
    if (geteuid() == 0) {
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "The process runs as root, which it has no need of: start it as a user of its "
                  "own");
    }
}

// Opens a log again by `reopen`; `name` is what it is called.
template <typename Reopen>
void reopenLog(std::string_view name, const Reopen& reopen) noexcept {
    try {
        try {
            reopen();
        } catch (const std::exception& error) {
            Base::log(
                "tesk", TeskTraceLog::SeverityError,
                std::string(name) + " goes on as before: " + std::string(Base::reasonOf(error)));
        }
    } catch (const std::bad_alloc&) {
        // The line is lost.
    }
}

[[noreturn]] void endWithoutHandlers(int status) {
    (void)std::fflush(nullptr);
    std::_Exit(status);
}

int stop(Service& service) {
    Base::log("tesk", TeskTraceLog::SeverityInformation, "Stopping");
    if (service.stop())
        return 0;
    // A provider that still runs would use objects that are destroyed.
    Base::log("tesk", TeskTraceLog::SeverityError,
              "A provider does not finish in time; the process ends without it");
    endWithoutHandlers(1);
}

// How often the password file is examined. A user who was just given a password tries it at once.
constexpr std::chrono::seconds kPasswordFileInterval(1);

// Each connection is an open file, and a process starts with a lower limit than it may have.
void raiseLimitOfOpenFiles() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// What is left of the process when the service has ended.
struct ServiceEnd {
    int status = 0;
    bool isReading = false;  // a thread still compiles classes
};

bool endsService(int signal) noexcept {
    return signal == SIGTERM || signal == SIGINT;
}

// Loads the classes. A signal that ends the service does not wait for servers: it ends the process.
Loading::LoadedRepository loadAtStart(const Configuration::Settings& settings,
                                      const Base::SignalQueue& signals) {
    if (settings.servers.empty())
        return loadModel(settings, std::cerr);
    const Loading::LoadOptions how = {.cacheDirectory = settings.refresh.cacheDirectory};
    std::packaged_task<Loading::LoadedRepository()> load(
        [&] { return loadModel(settings, std::cerr, how); });
    std::future<Loading::LoadedRepository> loaded = load.get_future();
    std::thread thread([&] {
        load();
        Base::SignalQueue::wake();
    });
    while (loaded.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        if (endsService(signals.waitFor(std::chrono::seconds(1))))
            endWithoutHandlers(0);
    }
    thread.join();
    return loaded.get();
}

// Null if nobody asks for it. Told in the log, since the classes are not loaded yet.
std::unique_ptr<AdminService> startAdminService(const Configuration::Settings& settings) {
    if (!settings.adminListen)
        return nullptr;
    auto admin = std::make_unique<AdminService>(*settings.adminListen, TESK_VERSION);
    Base::log("tesk", TeskTraceLog::SeverityInformation,
              "Health and metrics are at " + admin->address());
    if (!isLoopback(*settings.adminListen)) {
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "Other machines reach " + admin->address() +
                      ", and everybody can read health and metrics there");
    }
    return admin;
}

// Counts if there are metrics; a number that is missing is no reason to end the service.
void countReload(Metrics::ServiceMetrics* metrics, bool isDone) noexcept {
    try {
        if (metrics != nullptr)
            metrics->countReload(isDone);
    } catch (const std::bad_alloc&) {
    }
}

void countRefresh(Metrics::ServiceMetrics* metrics, std::size_t failures) noexcept {
    try {
        if (metrics != nullptr)
            metrics->countServerRefresh(failures);
    } catch (const std::bad_alloc&) {
    }
}

// Serves until a signal ends that.
ServiceEnd serve(const ServeOptions& options, const Configuration::Settings& settings,
                 const Base::SignalQueue& signals, const Base::LogOutput& logOutput) {
    const std::unique_ptr<AdminService> admin = startAdminService(settings);
    Metrics::ServiceMetrics* const metrics = admin == nullptr ? nullptr : &admin->metrics();
    Loading::LoadedRepository loaded = loadAtStart(settings, signals);
    const TSKSmrPtr<Repository::ClassRepository> repository = loaded.repository;
    for (const Loading::ServerFailure& failure : loaded.failures)
        Base::log("tesk", TeskTraceLog::SeverityWarning, failure.toString());
    const Base::FileVersion passwordFile = Base::FileVersion::of(settings.security.passwordFile);
    const ServiceUsers users =
        asksForPasswords(settings) ? loadUsers(settings.security) : ServiceUsers();
    Service service(settings, repository, users.users, metrics);
    // Before the service is announced: from then on it ends by signals alone.
    Reloader reloader(
        {.readSettings =
             [options](std::ostream& messages) { return readSettings(options, messages); },
         .replace = [&service](const auto& classes,
                               auto newUsers) { service.replace(classes, std::move(newUsers)); },
         .setUsers = [&service](auto newUsers) { service.setUsers(std::move(newUsers)); },
         .onReload = [metrics](bool isDone) { countReload(metrics, isDone); },
         .onRefresh = [metrics](std::size_t failures) { countRefresh(metrics, failures); },
         .wake = &Base::SignalQueue::wake},
        settings, std::move(loaded), passwordFile);
    std::unique_ptr<const PasswordNote> note;
    if (!users.generatedPassword.isEmpty() && isatty(STDOUT_FILENO) == 0)
        note = std::make_unique<PasswordNote>(users.generatedPassword);
    warnOfRisks(settings, service.addresses());
    service.start();
    if (!announce(service, *repository, users, note.get())) {
        note.reset();
        (void)stop(service);
        return {.status = 1};  // the program says that its output cannot be written
    }
    if (admin != nullptr)
        admin->setState(AdminService::State::kReady);
    for (int signal = 0; !endsService(signal); signal = signals.waitFor(kPasswordFileInterval)) {
        if (signal == SIGHUP || signal == SIGUSR1) {
            reopenLog("The log", [&] { logOutput.reopen(); });
            reopenLog("The access log", [&] { service.reopenAccessLog(); });
        }
        if (signal == SIGHUP) {
            service.reloadCertificate();
            reloader.reload();
        }
        service.reloadCertificateIfChanged();
        reloader.goOn();
        service.tellFailedLogins();
    }
    // A second Ctrl-C ends the process at once. The other signals make no sense any more.
    (void)std::signal(SIGHUP, SIG_IGN);
    (void)std::signal(SIGUSR1, SIG_IGN);
    note.reset();  // before a signal can end the process
    if (admin != nullptr)
        admin->setState(AdminService::State::kStopping);
    signals.letThrough();
    return {.status = stop(service), .isReading = reloader.isReading()};
}

// Says what to do about a port that another program listens on.
std::runtime_error portInUse(const std::system_error& error,
                             const std::vector<Http::ListenAddress>& addresses) {
    constexpr std::uint16_t kWsManagement = 5985;
    const bool isKnown =
        std::ranges::count(addresses, kWsManagement, &Http::ListenAddress::port) > 0;
    return std::runtime_error(
        std::string(error.what()) +
        (isKnown ? "; 5985 is the port of WS-Management, which a CIM server may use" : "") +
        "; choose another port with --listen, or with listen in [server]");
}

int runServe(ServeOptions options) {
    askForPassword(options.model.server);
    const Configuration::Settings settings = readSettings(options, std::cerr);
    raiseLimitOfOpenFiles();
    (void)std::signal(SIGPIPE,
                      SIG_IGN);  // writing to a client that has gone is an error, not the end
    const Base::SignalQueue signals({SIGTERM, SIGINT, SIGHUP, SIGUSR1});
    const Base::LogOutput logOutput(settings.log.file,
                                    static_cast<TeskTraceLog::Severity>(settings.log.level));
    const ServiceEnd end = [&] {
        try {
            return serve(options, settings, signals, logOutput);
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::address_in_use)
                throw;
            throw portInUse(error, settings.server.listen);
        }
    }();
    // The thread uses static objects, which the exit handlers would destroy.
    if (end.isReading)
        endWithoutHandlers(end.status);
    return end.status;
}

}  // namespace

Command serveCommand() {
    const auto options = std::make_shared<ServeOptions>();
    Command command = {.name = "serve",
                       .summary = "Serves the documents of all classes over HTTP",
                       .details = kDetails,
                       .options = {},
                       .run = [options] { return runServe(*options); }};
    addServeOptions(command, *options);
    return command;
}

}  // namespace Commands

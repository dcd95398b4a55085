#include "ObjectManager/Commands/Serve/Service.h"

#include <new>
#include <utility>

#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Security/AnonymousAuthenticator.h"

namespace Commands {

namespace {

Http::Authentication authenticationBy(const TSKSmrPtr<Security::BasicAuthenticator>& authenticator,
                                      Security::Scheme scheme) {
    Http::Authentication authentication = {
        .prepare =
            [authenticator](const TSKHTTPRequest& request, const std::string& certificateUser) {
                return authenticator->prepare(request, certificateUser);
            },
        .unverifiedLogin = [authenticator](const TSKHTTPRequest& request)
            -> std::optional<Http::Authentication::Login> {
            auto login = authenticator->unverifiedLogin(request);
            if (!login)
                return std::nullopt;
            return {{.user = std::move(login->user), .credentials = std::move(login->credentials)}};
        },
        .verify =
            [authenticator](TSKHTTPRequest& request) { return authenticator->verify(request); }};
    // Nobody is asked for a password, so none is hashed.
    if (scheme == Security::Scheme::kNone)
        authentication.unverifiedLogin = nullptr;
    return authentication;
}

TSKSmrPtr<ITeskAuthenticator> authenticatorFor(
    const TSKSmrPtr<Security::BasicAuthenticator>& authenticator, Security::Scheme scheme) {
    if (scheme == Security::Scheme::kNone)
        return TSKSmrPtr<Security::AnonymousAuthenticator>::make();
    return authenticator;
}

}  // namespace

Service::Service(const Configuration::Settings& settings,
                 const TSKSmrPtr<Repository::ClassRepository>& repository,
                 Security::UserTable users, Metrics::ServiceMetrics* metrics)
    : accessLog_(settings.log.access.empty()
                     ? nullptr
                     : std::make_unique<Http::AccessLog>(settings.log.access)),
      authenticator_(
          TSKSmrPtr<Security::BasicAuthenticator>::make(std::move(users), settings.security)),
      index_(repository),
      host_(repository, authenticatorFor(authenticator_, settings.security.scheme),
            Host::InstallationPaths::ofThisProgram().installation, {&index_}),
      metrics_(metrics),
      server_(settings.server, host_.manager(),
              authenticationBy(authenticator_, settings.security.scheme),
              [this](const Http::Exchange& exchange) { report(exchange); }) {
    if (metrics_ == nullptr)
        return;
    countContent(*repository);
    metrics_->setSource([this] { return serverState(); });
}

Service::~Service() {
    if (metrics_ != nullptr)
        metrics_->setSource(nullptr);
}

void Service::start() {
    server_.start();
}

void Service::replace(const TSKSmrPtr<Repository::ClassRepository>& repository,
                      std::optional<Security::UserTable> users) {
    std::shared_ptr<Security::CredentialChecker> checker;
    if (users)
        checker = authenticator_->makeChecker(*std::move(users));
    std::shared_ptr<Pages::PageProvider::Site> site = Pages::PageProvider::makeSite(repository);
    host_.setRepository(repository);
    // Nothing below fails.
    index_.setSite(std::move(site));
    if (checker)
        authenticator_->setChecker(std::move(checker));
    countContent(*repository);
}

void Service::countContent(const Repository::ClassRepository& repository) noexcept {
    if (metrics_ == nullptr)
        return;
    try {
        std::vector<Metrics::ServiceMetrics::NamespaceSize> sizes;
        for (const Repository::CimNamespace& nameSpace : repository.namespaces())
            sizes.push_back(
                {.name = std::string(nameSpace.name()), .classes = nameSpace.classes().size()});
        metrics_->setContent(sizes);
    } catch (const std::bad_alloc&) {
        // The metrics are those of the classes before.
    }
}

Metrics::ServiceMetrics::ServerState Service::serverState() noexcept {
    const Http::Server::State state = server_.state();
    Metrics::ServiceMetrics::ServerState result = {.connections = state.connections,
                                                   .acceptedConnections = state.acceptedConnections,
                                                   .refusedConnections = state.refusedConnections,
                                                   .failedHandshakes = state.failedHandshakes,
                                                   .responseMemory = state.responseMemory,
                                                   .certificateExpiry = std::nullopt};
    if (const Http::TlsContext* const tls = server_.tls())
        result.certificateExpiry = tls->expiry();
    return result;
}

void Service::setUsers(Security::UserTable users) {
    authenticator_->setUsers(std::move(users));
}

void Service::reloadCertificate() noexcept {
    if (Http::TlsContext* const tls = server_.tls())
        tls->reload();
}

void Service::reloadCertificateIfChanged() noexcept {
    if (Http::TlsContext* const tls = server_.tls())
        tls->goOn();
}

void Service::reopenAccessLog() {
    if (accessLog_)
        accessLog_->reopen();
}

void Service::tellFailedLogins() noexcept {
    try {
        failedLogins_.tellRest();
    } catch (const std::bad_alloc&) {
        // Told next time.
    }
}

// Called by the threads of the server.
void Service::report(const Http::Exchange& exchange) {
    constexpr unsigned kUnauthorized = 401;
    const std::string user =
        exchange.request == nullptr ? "" : authenticator_->userOf(*exchange.request);
    const bool isFailedLogin = exchange.status == kUnauthorized && !user.empty();
    if (metrics_ != nullptr) {
        const std::string_view path =
            exchange.request == nullptr ? "" : std::string_view(exchange.request->getUri());
        metrics_->countResponse(path, exchange.status, exchange.duration, exchange.bodyBytes);
        if (isFailedLogin)
            metrics_->countFailedLogin();
    }
    if (isFailedLogin)
        failedLogins_.add(exchange.client, user);
    if (accessLog_)
        accessLog_->write(exchange, user);
}

bool Service::stop() {
    return server_.stop();
}

std::vector<std::string> Service::addresses() const {
    std::vector<std::string> addresses;
    for (const auto& [address, port] : server_.addresses())
        addresses.push_back("http://" + address + ":" + std::to_string(port));
    for (const auto& [address, port] : server_.tlsAddresses())
        addresses.push_back("https://" + address + ":" + std::to_string(port));
    return addresses;
}

}  // namespace Commands

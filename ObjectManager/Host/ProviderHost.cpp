#include "ObjectManager/Host/ProviderHost.h"

#include <utility>

#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/ProviderLibrary.h"
#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Host {

namespace {

class Installation : public ITeskInstallation {
  public:
    explicit Installation(const std::filesystem::path& directory) : directory_(directory.c_str()) {}

    [[nodiscard]] TSKString getInstallationDirectory() const override { return directory_; }

  private:
    TSKString directory_;
};

// An object manager without one of its providers would respond with 404 where it should serve a
// document.
void requireNone(const TeskProviderPluginManager::Failures& failures) {
    if (failures.empty())
        return;
    const TeskProviderFailure& first = failures.front();
    throw TeskBaseException("ProviderHost", first.file + ": " + first.reason, CIM_ERR_FAILED);
}

}  // namespace

ProviderHost::ProviderHost(const TSKSmrPtr<Repository::ClassRepository>& repository,
                           TSKSmrPtr<ITeskAuthenticator> authenticator,
                           const std::filesystem::path& installation,
                           const std::vector<urma::pf::Provider*>& ownProviders) {
    setRepository(repository);
    try {
        TeskProviderPluginManager::setTeskProviderPluginManager(manager_);
        AuthenticationHelper::setAuthenticator(std::move(authenticator));
        URMAConfigManager::setInstallation(TSKSmrPtr<Installation>::make(installation));
        start(installation / "providers", ownProviders);
    } catch (...) {
        stop();
        throw;
    }
}

ProviderHost::~ProviderHost() {
    stop();
}

// Our own providers come first, so that no library takes their URIs.
void ProviderHost::start(const std::filesystem::path& directory,
                         const std::vector<urma::pf::Provider*>& ownProviders) {
    for (urma::pf::Provider* const provider : ownProviders)
        requireNone(manager_->addProvider(*provider, provider->getProviderName()));
    requireNone(manager_->loadProviders(directory.c_str()));
    if (ProviderLibrary::filesIn(directory.c_str()).empty()) {
        throw TeskBaseException(
            "ProviderHost", TSKString(directory.c_str()) + ": holds no provider", CIM_ERR_FAILED);
    }
    requireNone(manager_->startup());
    requireNone(manager_->postStartup());
}

void ProviderHost::stop() noexcept {
    manager_->shutdown();
    TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
    AuthenticationHelper::setAuthenticator(nullptr);
    URMAConfigManager::setInstallation(nullptr);
}

void ProviderHost::setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository) {
    manager_->setNamespaceList(repository);
    manager_->setRepository(repository);  // cannot fail
}

}  // namespace Host

#include "Tests/Support/TestHost.h"

#include <utility>

#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Tests/Support/HostCalls.h"

namespace {

class Installation : public ITeskInstallation {
  public:
    explicit Installation(const std::filesystem::path& directory) : directory_(directory.c_str()) {}

    [[nodiscard]] TSKString getInstallationDirectory() const override {
        HostCalls::note("ITeskInstallation::getInstallationDirectory");
        return directory_;
    }

  private:
    TSKString directory_;
};

class Token : public urma::security::ISecurityToken {
  public:
    explicit Token(std::shared_ptr<std::atomic<long>> live) : live_(std::move(live)) { ++*live_; }
    Token(const Token&) = delete;
    Token& operator=(const Token&) = delete;
    ~Token() override { --*live_; }

    [[nodiscard]] TSKString getUserName() const override { return "alice"; }

  private:
    std::shared_ptr<std::atomic<long>> live_;
};

}  // namespace

bool TestAuthenticator::authenticateRequest(TSKHTTPRequest& request,
                                            TSKGenericHTTPIStream& /*istr*/,
                                            TSKGenericHTTPOStream& /*ostr*/,
                                            TSKSmrPtr<urma::security::ISecurityToken>& token) {
    HostCalls::note("ITeskAuthenticator::authenticateRequest");
    ++calls;
    contentLengthSeen = request.getContentLength();
    if (accepts)
        token = TSKSmrPtr<Token>::make(liveTokens_);
    return accepts;
}

TestHost::TestHost() {
    std::filesystem::create_directory(installation_ / "providers");
    manager_->setRepository(repository_);
    TeskProviderPluginManager::setTeskProviderPluginManager(manager_);
    AuthenticationHelper::setAuthenticator(authenticator_);
    URMAConfigManager::setInstallation(TSKSmrPtr<Installation>::make(installation_.path()));
}

TestHost::~TestHost() {
    removeManager();
    removeInstallation();
    AuthenticationHelper::setAuthenticator(nullptr);
}

void TestHost::writeProvidersFile(const std::string& name, const std::string& content) const {
    installation_.write("providers/" + name, content);
}

void TestHost::makeProvidersDirectory(const std::string& name) const {
    std::filesystem::create_directory(installation_ / ("providers/" + name));
}

void TestHost::removeManager() {
    TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
}

void TestHost::removeRepository() {
    manager_->setRepository(nullptr);
}

void TestHost::removeInstallation() {
    URMAConfigManager::setInstallation(nullptr);
}

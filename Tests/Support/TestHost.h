#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>

#include "Platform/ProviderFramework/ITeskAuthenticator.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Tests/Support/ModelRepository.h"
#include "Tests/Support/TemporaryDirectory.h"

/// Lets everybody in, or nobody, and remembers what it was shown.
class TestAuthenticator : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;

    std::atomic<bool> accepts = true;
    std::atomic<int> calls = 0;
    std::atomic<unsigned long> contentLengthSeen = 0;

    /// The tokens handed out that still exist.
    [[nodiscard]] long liveTokens() const noexcept { return *liveTokens_; }

  private:
    // Shared with the tokens, which may outlive this.
    std::shared_ptr<std::atomic<long>> liveTokens_ = std::make_shared<std::atomic<long>>(0);
};

/// Everything that a provider reaches of an object manager, installed while this lives: a plug-in
/// manager with a repository, an authenticator, and an installation whose "providers" directory is
/// empty.
class TestHost {
  public:
    TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;
    ~TestHost();

    [[nodiscard]] TeskProviderPluginManager& manager() { return *manager_; }
    [[nodiscard]] ModelRepository& repository() { return *repository_; }
    [[nodiscard]] TestAuthenticator& authenticator() { return *authenticator_; }

    /// Makes a file, or a directory, in the installation's "providers" directory.
    void writeProvidersFile(const std::string& name, const std::string& content) const;
    void makeProvidersDirectory(const std::string& name) const;

    void removeManager();
    void removeRepository();
    void removeInstallation();

  private:
    TemporaryDirectory installation_;
    TSKSmrPtr<ModelRepository> repository_ = TSKSmrPtr<ModelRepository>::make();
    TSKSmrPtr<TeskProviderPluginManager> manager_ = TSKSmrPtr<TeskProviderPluginManager>::make();
    TSKSmrPtr<TestAuthenticator> authenticator_ = TSKSmrPtr<TestAuthenticator>::make();
};

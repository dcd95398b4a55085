#pragma once

#include <filesystem>
#include <vector>

#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/ProviderFramework/ITeskAuthenticator.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Host {

/// Everything through which providers reach the object manager, installed for the process while
/// this lives, and the providers themselves, started and in the end shut down. One at a time.
///
/// Thread safety: made, given another repository and destroyed by one thread. Requests may run in
/// any thread, and must have ended when it is destroyed.
class ProviderHost {
  public:
    /// Loads the libraries in the directory "providers" of `installation` and starts them, after
    /// the providers that are part of this program. Those must outlive this.
    /// Errors: TeskBaseException, with the library and the reason, when a provider cannot be loaded
    /// or started, or there is no library.
    ProviderHost(const TSKSmrPtr<Repository::ClassRepository>& repository,
                 TSKSmrPtr<ITeskAuthenticator> authenticator,
                 const std::filesystem::path& installation,
                 const std::vector<urma::pf::Provider*>& ownProviders = {});
    ProviderHost(const ProviderHost&) = delete;
    ProviderHost& operator=(const ProviderHost&) = delete;
    ~ProviderHost();

    [[nodiscard]] const TeskProviderPluginManager& manager() const { return *manager_; }

    /// Lets requests that begin from now on see other classes.
    /// Errors: std::bad_alloc; the classes stay as they were.
    void setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository);

  private:
    void start(const std::filesystem::path& directory,
               const std::vector<urma::pf::Provider*>& ownProviders);
    void stop() noexcept;

    TSKSmrPtr<TeskProviderPluginManager> manager_ = TSKSmrPtr<TeskProviderPluginManager>::make();
};

}  // namespace Host

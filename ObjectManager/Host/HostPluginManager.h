#pragma once

#include <mutex>
#include <set>
#include <string>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Host {

/// A plug-in manager that remembers which providers serve the namespaces, so that they get the
/// requests for namespaces that appear later, too.
///
/// Thread safety: as the base class; setNamespaces is called by one thread.
class HostPluginManager : public TeskProviderPluginManager {
  public:
    bool registerURI(const TSKString& providerName, const TSKString& uri) override;

    /// Makes `namespaces` the namespaces of the object manager. Providers that registered a
    /// namespace before get those that are new.
    void setNamespaces(const TSKSmrPtr<ITeskNamespaceList>& namespaces);

  private:
    [[nodiscard]] bool isNamespace(const TSKString& uri) const;

    std::mutex mutex_;
    std::set<TSKString> namespaceProviders_;  // guarded by mutex_
    // In lower case, without a slash at the end.
    std::set<std::string> registeredUris_;  // guarded by mutex_
};

}  // namespace Host

#pragma once

#include <shared_mutex>
#include <vector>

#include "Platform/Cim/ITeskRepository.h"
#include "Platform/ProviderFramework/ITeskNamespaceList.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/ProviderFramework/TeskProviderFailure.h"
#include "Platform/ProviderFramework/URIRoutingTable.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"

/// Loads the provider plug-ins, drives them through their life, and is what they reach the object
/// manager through: its namespaces, its repository, and the URIs whose requests they get.
///
/// A provider that fails is left out: its URIs are removed, it gets no further call, and the others
/// go on. The failure is logged and returned with the library's file and the reason.
///
/// Destroying the manager does not shut the providers down; call shutdown() first.
///
/// Thread safety: loadProviders, addProvider, startup, postStartup, shutdown and setNamespaceList
/// are called by one thread; everything else may be used by several threads at once.
class TESK_PLATFORM_EXPORT TeskProviderPluginManager {
  public:
    using Failures = std::vector<TeskProviderFailure>;

    TeskProviderPluginManager() = default;
    TeskProviderPluginManager(const TeskProviderPluginManager&) = delete;
    TeskProviderPluginManager& operator=(const TeskProviderPluginManager&) = delete;
    virtual ~TeskProviderPluginManager();

    /// The plug-in manager of the process, null where the object manager has installed none.
    [[nodiscard]] static TSKSmrPtr<TeskProviderPluginManager> getTeskProviderPluginManager();

    // What providers call.

    /// The names of the CIM namespaces that the object manager holds.
    [[nodiscard]] TSKValSlist<TSKString> getNamespaceList() const;

    /// The object manager's class definitions as they are now, null where there are none. The
    /// definitions behind the pointer stay the same, also when the object manager loads others.
    [[nodiscard]] TSKSmrPtr<ITeskRepository> getRepository() const;

    /// Routes the requests whose path begins with `uri` to the named provider; see URIRoutingTable.
    /// Returns whether it does: not when `uri` does not begin with `/`, when no provider of that
    /// name is there, or when another provider has registered `uri`. A refusal is logged. Virtual,
    /// so that an object manager can watch over registrations.
    virtual bool registerURI(const TSKString& providerName, const TSKString& uri);

    /// Says which methods of HTTP the named provider responds to. It gets no request with another
    /// method: the front end responds to it, and to OPTIONS unless that is listed. Before this call
    /// the methods of a provider are GET and HEAD, which suits one that serves documents. Returns
    /// false, and logs it, when no provider of that name is there.
    bool registerMethods(const TSKString& providerName, const std::vector<TSKString>& methods);

    // What the object manager calls.

    /// Makes `manager` the plug-in manager of the process, null for none. Returns the one before.
    static TSKSmrPtr<TeskProviderPluginManager> setTeskProviderPluginManager(
        TSKSmrPtr<TeskProviderPluginManager> manager);

    /// Makes these the class definitions of the object manager. Returns those before.
    TSKSmrPtr<ITeskRepository> setRepository(TSKSmrPtr<ITeskRepository> repository);

    /// Makes these the namespaces of the object manager. Returns those before. The provider that
    /// serves the first namespace, before or now, that a provider has registered is given all
    /// namespaces that no provider has registered.
    TSKSmrPtr<ITeskNamespaceList> setNamespaceList(TSKSmrPtr<ITeskNamespaceList> namespaces);

    /// Loads every library lib*.so of the directory, in the order of their names, and asks each
    /// provider for its name. See ProviderLibrary::load.
    Failures loadProviders(const TSKString& directory);

    /// Adds a provider that is no library of its own. It must outlive the manager or its
    /// shutdown(); `origin` stands for its file in messages.
    Failures addProvider(urma::pf::Provider& provider, const TSKString& origin);

    /// Starts all providers, in the order in which they were added.
    Failures startup();

    /// Calls postStartup of all providers, then postStartupIsComplete of all. One that fails is
    /// shut down.
    Failures postStartup();

    /// Shuts all providers down, the last one first, and forgets them.
    Failures shutdown();

    /// The provider that a request for `path` belongs to, null when it belongs to none. May be
    /// used until shutdown(), before which the caller ends all requests.
    [[nodiscard]] urma::pf::Provider* findProvider(const TSKString& path) const;

    /// The methods of the provider that a request for `path` belongs to; GET and HEAD when it
    /// belongs to none.
    [[nodiscard]] std::vector<TSKString> getMethods(const TSKString& path) const;

  private:
    struct Entry {
        urma::pf::Provider* provider;
        TSKString name;
        TSKString file;
        std::vector<TSKString> methods;
    };

    [[nodiscard]] const Entry* findEntry(const TSKString& providerName) const;
    [[nodiscard]] const Entry* findEntryOf(const TSKString& path) const;
    [[nodiscard]] const char* addRoute(const TSKString& providerName, const TSKString& uri);
    void routeNamespaces(const std::vector<TSKString>& before, const std::vector<TSKString>& now);
    void addEntry(urma::pf::Provider& provider, const TSKString& file);
    void removeEntry(const Entry& entry);
    [[nodiscard]] Entry takeLastEntry() noexcept;

    mutable std::shared_mutex mutex_;
    TSKSmrPtr<ITeskNamespaceList> namespaces_;  // guarded by mutex_
    TSKSmrPtr<ITeskRepository> repository_;     // guarded by mutex_
    URIRoutingTable routes_;                    // guarded by mutex_
    std::vector<Entry> entries_;  // changed under mutex_, by the life-cycle thread alone
};

#include "ObjectManager/Host/HostPluginManager.h"

#include <string_view>

#include "Platform/Util/TSKValSlistIterator.h"

namespace Host {

namespace {

// A URI is the same in any case, with or without a slash at its end.
std::string keyOf(const TSKString& uri) {
    TSKString lowered = uri;
    std::string_view key = lowered.toLower();
    while (key.ends_with('/'))
        key.remove_suffix(1);
    return std::string(key);
}

}  // namespace

bool HostPluginManager::registerURI(const TSKString& providerName, const TSKString& uri) {
    if (!TeskProviderPluginManager::registerURI(providerName, uri))
        return false;
    const std::lock_guard lock(mutex_);
    registeredUris_.insert(keyOf(uri));
    if (isNamespace(uri))
        namespaceProviders_.insert(providerName);
    return true;
}

void HostPluginManager::setNamespaces(const TSKSmrPtr<ITeskNamespaceList>& namespaces) {
    setNamespaceList(namespaces);
    std::set<TSKString> providers;
    std::set<std::string> known;
    {
        const std::lock_guard lock(mutex_);
        providers = namespaceProviders_;
        known = registeredUris_;
    }
    const TSKValSlist<TSKString> names = getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    while (next()) {
        const TSKString uri = "/" + next.key();
        if (known.contains(keyOf(uri)))
            continue;
        for (const TSKString& provider : providers)
            registerURI(provider, uri);
    }
}

bool HostPluginManager::isNamespace(const TSKString& uri) const {
    const std::string key = keyOf(uri);
    const TSKValSlist<TSKString> names = getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    while (next()) {
        if (key == keyOf("/" + next.key()))
            return true;
    }
    return false;
}

}  // namespace Host

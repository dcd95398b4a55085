#include "ObjectManager/Host/HostPluginManager.h"

#include <string_view>

#include "Platform/Util/TSKValSlistIterator.h"

bool HostPluginManager::registerURI(const TSKString& providerName, const TSKString& uri) {
    if (!TeskProviderPluginManager::registerURI(providerName, uri))
        return false;
    const std::lock_guard lock(mutex_);
    TSKString folded = uri;
    registeredUris_.insert(folded.toLower());
    if (isNamespace(uri))
        namespaceProviders_.insert(providerName);
    return true;
}

void HostPluginManager::setNamespaces(const TSKSmrPtr<ITeskNamespaceList>& namespaces) {
    setNamespaceList(namespaces);
    std::set<TSKString> providers;
    std::set<TSKString> known;
    {
        const std::lock_guard lock(mutex_);
        providers = namespaceProviders_;
        known = registeredUris_;
    }
    const TSKValSlist<TSKString> names = getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    while (next()) {
        const TSKString uri = "/" + next.key();
        TSKString folded = uri;
        if (known.contains(folded.toLower()))
            continue;
        for (const TSKString& provider : providers)
            registerURI(provider, uri);
    }
}

bool HostPluginManager::isNamespace(const TSKString& uri) const {
    const TSKValSlist<TSKString> names = getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    while (next()) {
        if (uri.equalsIgnoreCase("/" + next.key()))
            return true;
    }
    return false;
}

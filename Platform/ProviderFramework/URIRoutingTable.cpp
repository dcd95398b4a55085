#include "Platform/ProviderFramework/URIRoutingTable.h"

#include <string_view>

namespace {

std::string keyOf(TSKString uri) {
    std::string_view key = uri.toLower();
    while (key.ends_with('/'))
        key.remove_suffix(1);
    return std::string(key);
}

}  // namespace

URIRoutingTable::Outcome URIRoutingTable::add(const TSKString& providerName, const TSKString& uri) {
    if (uri.find('/') != 0)
        return Outcome::kMalformed;
    const auto [entry, added] = providers_.try_emplace(keyOf(uri), providerName);
    return added || entry->second == providerName ? Outcome::kAdded : Outcome::kTaken;
}

void URIRoutingTable::removeProvider(const TSKString& providerName) {
    std::erase_if(providers_, [&](const auto& entry) { return entry.second == providerName; });
}

const TSKString* URIRoutingTable::find(const TSKString& path) const {
    if (path.find('/') != 0)
        return nullptr;
    TSKString lowered = path;
    const std::string_view key = lowered.toLower();
    for (std::size_t end = key.size(); end != 0; end = key.rfind('/', end - 1)) {
        if (const TSKString* provider = providerOf(key.substr(0, end)))
            return provider;
    }
    const bool hasOneSegment = key.size() > 1 && key.rfind('/') == 0;
    if (hasOneSegment) {
        if (const TSKString* provider = providerOf("/interop"))
            return provider;
    }
    return providerOf("");
}

const TSKString* URIRoutingTable::findRegistered(const TSKString& uri) const {
    return uri.find('/') == 0 ? providerOf(keyOf(uri)) : nullptr;
}

const TSKString* URIRoutingTable::providerOf(std::string_view key) const {
    const auto entry = providers_.find(key);
    return entry == providers_.end() ? nullptr : &entry->second;
}

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <optional>
#include <string>

#include "Platform/Internal/TSKInstalled.h"
#include "Platform/ProviderFramework/ProviderLibrary.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

using Failures = TeskProviderPluginManager::Failures;

constinit TSKInstalled<TeskProviderPluginManager> installedManager;

void log(TeskTraceLog::Severity severity, const TSKString& message) {
    TSKLog::log("TeskProviderPluginManager", message, severity, TeskTraceLog::VerbosityNormal, 0,
                TSKLog::CIMOMLOG);
}

std::vector<TSKString> documentMethods() {
    return {"GET", "HEAD"};
}

void report(Failures& failures, const TSKString& file, const TSKString& reason) {
    log(TeskTraceLog::SeverityError, file + ": " + reason);
    failures.push_back({.file = file, .reason = reason});
}

// Runs one step of a provider's life. Returns why it failed, nothing when it did not: a provider
// may throw anything.
template <typename Step>
std::optional<TSKString> failureOf(const char* name, const Step& step) {
    try {
        step();
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return TSKString(name) + " failed: there is not enough memory";
    } catch (const std::exception& exception) {
        return TSKString(name) + " failed: " + exception.what();
    } catch (...) {
        return TSKString(name) + " failed with an exception of unknown type";
    }
}

// The URIs of the namespaces in a list, which may be null.
std::vector<TSKString> urisOf(const TSKSmrPtr<ITeskNamespaceList>& namespaces) {
    std::vector<TSKString> uris;
    if (!namespaces)
        return uris;
    const TSKValSlist<TSKString> names = namespaces->getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    while (next())
        uris.push_back("/" + next.key());
    return uris;
}

}  // namespace

TeskProviderPluginManager::~TeskProviderPluginManager() = default;

TSKSmrPtr<TeskProviderPluginManager> TeskProviderPluginManager::getTeskProviderPluginManager() {
    return installedManager.get();
}

TSKSmrPtr<TeskProviderPluginManager> TeskProviderPluginManager::setTeskProviderPluginManager(
    TSKSmrPtr<TeskProviderPluginManager> manager) {
    return installedManager.install(std::move(manager));
}

TSKValSlist<TSKString> TeskProviderPluginManager::getNamespaceList() const {
    TSKSmrPtr<ITeskNamespaceList> namespaces;
    {
        const std::shared_lock lock(mutex_);
        namespaces = namespaces_;
    }
    return namespaces ? namespaces->getNamespaceList() : TSKValSlist<TSKString>();
}

TSKSmrPtr<ITeskRepository> TeskProviderPluginManager::getRepository() const {
    const std::shared_lock lock(mutex_);
    return repository_;
}

bool TeskProviderPluginManager::registerURI(const TSKString& providerName, const TSKString& uri) {
    const char* const refusal = addRoute(providerName, uri);
    if (refusal == nullptr)
        return true;
    log(TeskTraceLog::SeverityWarning,
        "The URI " + uri + " is refused to the provider " + providerName + ": " + refusal);
    return false;
}

bool TeskProviderPluginManager::registerMethods(const TSKString& providerName,
                                                const std::vector<TSKString>& methods) {
    {
        const std::lock_guard lock(mutex_);
        const auto entry = std::ranges::find(entries_, providerName, &Entry::name);
        if (entry != entries_.end()) {
            entry->methods = methods;
            return true;
        }
    }
    log(TeskTraceLog::SeverityWarning,
        "The methods of the provider " + providerName + " are refused: there is no such provider");
    return false;
}

TSKSmrPtr<ITeskNamespaceList> TeskProviderPluginManager::setNamespaceList(
    TSKSmrPtr<ITeskNamespaceList> namespaces) {
    TSKSmrPtr<ITeskNamespaceList> previous;
    {
        const std::lock_guard lock(mutex_);
        previous = namespaces_;
    }
    // Before the list changes: this fails when memory runs out. A route to a namespace that does
    // not come to be listed does no harm, since the provider does not find it.
    routeNamespaces(urisOf(previous), urisOf(namespaces));
    const std::lock_guard lock(mutex_);
    namespaces_.swap(namespaces);
    return namespaces;
}

TSKSmrPtr<ITeskRepository> TeskProviderPluginManager::setRepository(
    TSKSmrPtr<ITeskRepository> repository) {
    const std::lock_guard lock(mutex_);
    repository_.swap(repository);
    return repository;
}

Failures TeskProviderPluginManager::loadProviders(const TSKString& directory) {
    Failures failures;
    std::vector<std::string> files;
    if (const auto failure = failureOf("Reading the directory",
                                       [&] { files = ProviderLibrary::filesIn(directory); }))
        report(failures, directory, *failure);
    for (const std::string& file : files) {
        const TSKString path = file.c_str();
        if (const auto failure =
                failureOf("Loading", [&] { addEntry(ProviderLibrary::load(path), path); }))
            report(failures, path, *failure);
    }
    return failures;
}

Failures TeskProviderPluginManager::addProvider(urma::pf::Provider& provider,
                                                const TSKString& origin) {
    Failures failures;
    if (const auto failure = failureOf("Adding", [&] { addEntry(provider, origin); }))
        report(failures, origin, *failure);
    return failures;
}

Failures TeskProviderPluginManager::startup() {
    Failures failures;
    for (const Entry& entry : std::vector(entries_)) {
        if (const auto failure = failureOf("Start-up", [&] { entry.provider->startup(); })) {
            removeEntry(entry);
            report(failures, entry.file, *failure);
        }
    }
    return failures;
}

Failures TeskProviderPluginManager::postStartup() {
    Failures failures;
    const auto callAll = [&](const char* name, void (urma::pf::Provider::*step)()) {
        for (const Entry& entry : std::vector(entries_)) {
            const auto failure = failureOf(name, [&] { (entry.provider->*step)(); });
            if (!failure)
                continue;
            removeEntry(entry);
            report(failures, entry.file, *failure);
            if (const auto another = failureOf("Shut-down", [&] { entry.provider->shutdown(); }))
                report(failures, entry.file, *another);
        }
    };
    callAll("Post-start-up", &urma::pf::Provider::postStartup);
    callAll("Completion of post-start-up", &urma::pf::Provider::postStartupIsComplete);
    return failures;
}

Failures TeskProviderPluginManager::shutdown() {
    Failures failures;
    while (!entries_.empty()) {
        const Entry entry = takeLastEntry();
        if (const auto failure = failureOf("Shut-down", [&] { entry.provider->shutdown(); }))
            report(failures, entry.file, *failure);
    }
    return failures;
}

urma::pf::Provider* TeskProviderPluginManager::findProvider(const TSKString& path) const {
    const std::shared_lock lock(mutex_);
    const Entry* entry = findEntryOf(path);
    return entry == nullptr ? nullptr : entry->provider;
}

std::vector<TSKString> TeskProviderPluginManager::getMethods(const TSKString& path) const {
    const std::shared_lock lock(mutex_);
    const Entry* entry = findEntryOf(path);
    return entry == nullptr ? documentMethods() : entry->methods;
}

const TeskProviderPluginManager::Entry* TeskProviderPluginManager::findEntryOf(
    const TSKString& path) const {
    const TSKString* name = routes_.find(path);
    return name == nullptr ? nullptr : findEntry(*name);
}

const TeskProviderPluginManager::Entry* TeskProviderPluginManager::findEntry(
    const TSKString& providerName) const {
    const auto entry = std::ranges::find(entries_, providerName, &Entry::name);
    return entry == entries_.end() ? nullptr : &*entry;
}

// Returns why the route is refused, null when it is not.
const char* TeskProviderPluginManager::addRoute(const TSKString& providerName,
                                                const TSKString& uri) {
    const std::lock_guard lock(mutex_);
    if (findEntry(providerName) == nullptr)
        return "there is no such provider";
    switch (routes_.add(providerName, uri)) {
        case URIRoutingTable::Outcome::kMalformed:
            return "it does not begin with a slash";
        case URIRoutingTable::Outcome::kTaken:
            return "another provider has registered it";
        case URIRoutingTable::Outcome::kAdded:
            break;
    }
    return nullptr;
}

// Gives the namespaces that no provider has registered to the one that serves the others.
void TeskProviderPluginManager::routeNamespaces(const std::vector<TSKString>& before,
                                                const std::vector<TSKString>& now) {
    const std::lock_guard lock(mutex_);
    std::optional<TSKString> provider;
    for (const std::vector<TSKString>* uris : {&before, &now}) {
        for (const TSKString& uri : *uris) {
            if (const TSKString* name = routes_.findRegistered(uri); name != nullptr && !provider)
                provider = *name;
        }
    }
    if (!provider)
        return;
    for (const TSKString& uri : now) {
        if (routes_.findRegistered(uri) == nullptr)
            (void)routes_.add(*provider, uri);
    }
}

void TeskProviderPluginManager::addEntry(urma::pf::Provider& provider, const TSKString& file) {
    const TSKString name = provider.getProviderName();
    if (const Entry* other = findEntry(name))
        throw TeskBaseException(
            "TeskProviderPluginManager::addEntry",
            "A provider of the name " + name + " is already there, from " + other->file,
            CIM_ERR_ALREADY_EXISTS);
    const std::lock_guard lock(mutex_);
    entries_.push_back(
        {.provider = &provider, .name = name, .file = file, .methods = documentMethods()});
}

// Needs no memory, so that a process can end without any.
TeskProviderPluginManager::Entry TeskProviderPluginManager::takeLastEntry() noexcept {
    const std::lock_guard lock(mutex_);
    Entry entry = std::move(entries_.back());
    entries_.pop_back();
    routes_.removeProvider(entry.name);
    return entry;
}

void TeskProviderPluginManager::removeEntry(const Entry& entry) {
    const std::lock_guard lock(mutex_);
    routes_.removeProvider(entry.name);
    std::erase_if(entries_, [&](const Entry& other) { return other.provider == entry.provider; });
}

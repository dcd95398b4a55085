#include "ObjectManager/Loading/RepositoryLoader.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Loading/ServerCache.h"
#include "ObjectManager/Loading/ServerReader.h"
#include "ObjectManager/Mof/Compiler.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Loading {

namespace {

using Repository::CimNamespace;
using Repository::ClassRepository;
using ServerState = LoadedRepository::ServerState;

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Loading::loadSources", TSKString(message), CIM_ERR_FAILED);
}

// One source a namespace, named as it is first.
std::vector<NamespaceSource> addUp(const std::vector<NamespaceSource>& sources) {
    std::vector<NamespaceSource> sums;
    for (const NamespaceSource& source : sources) {
        const auto known = std::ranges::find_if(sums, [&](const NamespaceSource& sum) {
            return sum.server.empty() && source.server.empty() &&
                   Base::equalsIgnoringCase(sum.name, source.name);
        });
        if (known == sums.end())
            sums.push_back(source);
        else
            known->paths.insert(known->paths.end(), source.paths.begin(), source.paths.end());
    }
    return sums;
}

void append(std::vector<Mof::Diagnostic>& all, std::vector<Mof::Diagnostic>&& more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

// Loads everything once.
class Loader {
  public:
    Loader(const Sources& sources, const Repository::Options& options, const LoadOptions& how)
        : sources_(addUp(sources.namespaces)),
          servers_(sources.servers),
          includePath_(sources.includePath),
          options_(options),
          how_(how),
          namespaces_(sources_.size()) {
        for (const NamespaceSource& source : sources_) {
            if (!source.name.empty() && !names_.insert(source.name).second)
                failTwice(source.name);
        }
        // Of classes that were made with other options nothing can be used.
        if (how_.before != nullptr && (!how_.before->repository || how_.before->options != options))
            how_.before = nullptr;
    }

    LoadedRepository load() {
        loaded_.options = options_;
        for (const ServerSource& server : servers_)
            loadServer(server);
        for (std::size_t index = 0; index < sources_.size(); ++index) {
            if (sources_[index].server.empty())
                loadFiles(index);
        }
        if (!failed_)
            loaded_.repository = makeRepository();
        return std::move(loaded_);
    }

  private:
    [[noreturn]] static void failTwice(const std::string& name) {
        fail("the namespace " + Base::quoted(name) + " comes from two places; choose one of them");
    }

    void loadFiles(std::size_t index) {
        const NamespaceSource& source = sources_[index];
        if (how_.keepsFiles && how_.before != nullptr && keep(index, source.name))
            return;
        Mof::CompilerOptions compilerOptions;
        compilerOptions.includePath = includePath_;
        compilerOptions.maxTotalSize =
            options_.maxModelSize - std::min(options_.maxModelSize, bytesRead_);
        Mof::Compilation compilation = Mof::compile(source.paths, compilerOptions);
        bytesRead_ += compilation.bytesRead;
        failed_ = failed_ || compilation.hasErrors();
        append(loaded_.diagnostics, std::move(compilation.diagnostics));
        if (!failed_)
            build(index, source.name, std::move(compilation.classes));
    }

    void loadServer(const ServerSource& server) {
        ServerRequest request = {
            .sources = {},
            .knownDigest = [&](const NamespaceSource& source) { return digestOf(server, source); },
            .onNamespace = [&](ServerNamespace&& read) { take(server, std::move(read)); },
            .onWarning =
                [&](Mof::Diagnostic&& warning) {
                    loaded_.diagnostics.push_back(std::move(warning));
                }};
        for (const NamespaceSource& source : sources_) {
            if (source.server == server.name)
                request.sources.push_back(source);
            else
                request.namedElsewhere.insert(source.name);
        }
        if (request.sources.empty())
            return;
        cache_.reset();
        const bool wasChanged = isChanged_;
        try {
            if (!how_.cacheDirectory.empty())
                cache_ = std::make_unique<ServerCache>(how_.cacheDirectory, server);
            readServer(server, request, how_.stop);
            keepNames(server);
        } catch (const CimXml::ServerError& error) {
            if (error.kind() == CimXml::ServerError::Kind::kStopped)
                throw;
            forget(server);
            isChanged_ = wasChanged;
            loaded_.failures.push_back(
                {.error = error.getMessage().data(), .consequence = replace(server)});
            if (loaded_.failures.back().consequence.empty())
                throw;
        }
    }

    // Takes the classes of a server that has failed from where they are known. Returns from where;
    // empty when they are not known.
    std::string replace(const ServerSource& server) {
        if (keepAll(server))
            return "its classes stay as they were";
        forget(server);
        if (cache_ && readCache(server))
            return "its classes are those that were read last, from " + cache_->path();
        return {};
    }

    // What was read of a server until it failed: namespaces of different times may not fit.
    void forget(const ServerSource& server) {
        for (std::size_t index = 0; index < sources_.size(); ++index) {
            if (sources_[index].server == server.name)
                namespaces_[index].clear();
        }
        std::erase_if(loaded_.serverStates,
                      [&](const ServerState& state) { return state.server.name == server.name; });
    }

    void take(const ServerSource& server, ServerNamespace&& read) {
        const std::size_t index = askedBy(read.source);
        const bool isKnown = digestOf(server, read.source) == read.content.digest;
        loaded_.serverStates.push_back({.asked = sources_[index],
                                        .source = read.source,
                                        .server = server,
                                        .digest = read.content.digest,
                                        .cacheDirectory = how_.cacheDirectory});
        if (isKnown && keep(index, read.source.name))
            return;
        append(loaded_.diagnostics, std::move(read.content.compilation.diagnostics));
        if (cache_) {
            toCache([&] { cache_->keep(read.source.name, read.content.compilation, how_.stop); });
        }
        build(index, read.source.name, std::move(read.content.compilation.classes));
    }

    // The source that led to a namespace: that of its name, or that of all of its server.
    [[nodiscard]] std::size_t askedBy(const NamespaceSource& read) const {
        const auto found = std::ranges::find_if(sources_, [&](const NamespaceSource& source) {
            return source == read || (source.name.empty() && source.server == read.server);
        });
        return static_cast<std::size_t>(found - sources_.begin());
    }

    // How that namespace was read before; null if it was not, or otherwise.
    [[nodiscard]] const ServerState* stateOf(const ServerSource& server,
                                             const NamespaceSource& source) const {
        if (how_.before == nullptr)
            return nullptr;
        const auto& states = how_.before->serverStates;
        const auto found = std::ranges::find_if(states, [&](const ServerState& state) {
            return state.source == source && state.server.options.url == server.options.url;
        });
        return found == states.end() ? nullptr : &*found;
    }

    // Of what is known; nothing as well when the namespace is needed for a cache.
    [[nodiscard]] std::optional<std::uint64_t> digestOf(const ServerSource& server,
                                                        const NamespaceSource& source) const {
        const ServerState* const state = stateOf(server, source);
        return state == nullptr || state->cacheDirectory != how_.cacheDirectory ? std::nullopt
                                                                                : state->digest;
    }

    // Writes to the cache, without which everything works as well.
    template <typename Write>
    void toCache(const Write& write) {
        try {
            write();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            if (std::exchange(isCacheBroken_, true))
                return;
            Mof::Diagnostic warning;
            warning.severity = Mof::Severity::kWarning;
            warning.file = cache_->path();
            warning.place = {.line = 0, .column = 0};
            warning.message =
                "what the server gave is not kept: " + std::string(Base::reasonOf(error));
            loaded_.diagnostics.push_back(std::move(warning));
        }
    }

    void keepNames(const ServerSource& server) {
        if (!cache_)
            return;
        const std::vector<std::string> names = keptNames(loaded_.serverStates, server);
        if (how_.before == nullptr || names != keptNames(how_.before->serverStates, server))
            toCache([&] { cache_->keepNames(names); });
    }

    // The namespaces of a server that have been read with this cache.
    [[nodiscard]] std::vector<std::string> keptNames(const std::vector<ServerState>& states,
                                                     const ServerSource& server) const {
        std::vector<std::string> names;
        for (const ServerState& state : states) {
            if (state.server.options.url == server.options.url &&
                state.cacheDirectory == how_.cacheDirectory)
                names.push_back(state.source.name);
        }
        return names;
    }

    // Returns false when a namespace of the server is missing in the cache.
    bool readCache(const ServerSource& server) {
        for (std::size_t index = 0; index < sources_.size(); ++index) {
            const NamespaceSource& source = sources_[index];
            if (source.server != server.name)
                continue;
            std::vector<std::string> names = {source.name};
            if (source.name.empty())
                names = cache_->names();
            if (names.empty())
                return false;
            for (const std::string& name : names) {
                if (!source.name.empty() || !names_.contains(name)) {
                    if (!readCache(server, index, name))
                        return false;
                }
            }
        }
        return true;
    }

    bool readCache(const ServerSource& server, std::size_t index, const std::string& name) {
        Mof::Compilation compilation = cache_->read(name);
        if (compilation.hasErrors())
            return false;
        NamespaceSource source = sources_[index];
        if (source.name.empty()) {
            source.name = name;
            source.remoteName = name;
        }
        loaded_.serverStates.push_back(
            {.asked = sources_[index], .source = std::move(source), .server = server});
        build(index, name, std::move(compilation.classes));
        return true;
    }

    // Takes all namespaces of a server as they were before. Returns false when one is missing.
    bool keepAll(const ServerSource& server) {
        if (how_.before == nullptr)
            return false;
        std::vector<bool> isThere(sources_.size());
        for (const ServerState& state : how_.before->serverStates) {
            const auto found = std::ranges::find(sources_, state.asked);
            if (state.server.options.url != server.options.url || found == sources_.end() ||
                found->server != server.name)
                continue;
            const auto index = static_cast<std::size_t>(found - sources_.begin());
            isThere[index] = keep(index, state.source.name);
            loaded_.serverStates.push_back(state);
        }
        for (std::size_t index = 0; index < sources_.size(); ++index) {
            if (sources_[index].server == server.name && !isThere[index])
                return false;
        }
        return true;
    }

    // Takes a namespace as it was before. Returns false when it was not there.
    bool keep(std::size_t index, const std::string& name) {
        const CimNamespace* const old = how_.before->repository->findNamespace(TSKString(name));
        if (old == nullptr)
            return false;
        namespaces_[index].push_back(*old);
        return true;
    }

    void build(std::size_t index, const std::string& name,
               std::vector<Mof::ClassDeclaration>&& classes) {
        namespaces_[index].emplace_back(TSKString(name), std::move(classes), options_);
        isChanged_ = true;
    }

    TSKSmrPtr<ClassRepository> makeRepository() {
        std::vector<CimNamespace> all;
        for (std::vector<CimNamespace>& some : namespaces_)
            std::move(some.begin(), some.end(), std::back_inserter(all));
        if (!isChanged_ && isAsBefore(all))
            return how_.before->repository;
        Base::NameSet names;
        for (const CimNamespace& nameSpace : all) {
            if (!names.insert(nameSpace.name()).second)
                failTwice(nameSpace.name().data());
        }
        return TSKSmrPtr<ClassRepository>::make(std::move(all));
    }

    [[nodiscard]] bool isAsBefore(const std::vector<CimNamespace>& all) const {
        return how_.before != nullptr &&
               std::ranges::equal(all, how_.before->repository->namespaces(), {},
                                  &CimNamespace::name, &CimNamespace::name);
    }

    const std::vector<NamespaceSource> sources_;
    const std::vector<ServerSource>& servers_;
    const std::vector<std::string>& includePath_;
    const Repository::Options& options_;
    LoadOptions how_;
    Base::NameSet names_;  // of sources_

    std::unique_ptr<ServerCache> cache_;  // of the server that is read; null without a cache
    bool isCacheBroken_ = false;          // of which a warning tells

    std::vector<std::vector<CimNamespace>> namespaces_;  // of each source
    LoadedRepository loaded_;
    std::size_t bytesRead_ = 0;
    bool failed_ = false;
    bool isChanged_ = false;  // whether a namespace is not as it was before
};

}  // namespace

LoadedRepository loadSources(const Sources& sources, const Repository::Options& options,
                             const LoadOptions& how) {
    return Loader(sources, options, how).load();
}

LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                const std::vector<std::string>& includePath,
                                const Repository::Options& options) {
    return loadSources({.namespaces = sources, .includePath = includePath}, options);
}

}  // namespace Loading

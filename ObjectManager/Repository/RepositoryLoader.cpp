#include "ObjectManager/Repository/RepositoryLoader.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Mof/Compiler.h"

namespace Repository {

namespace {

// One source a namespace, named as it is first.
std::vector<NamespaceSource> addUp(const std::vector<NamespaceSource>& sources) {
    std::vector<NamespaceSource> sums;
    for (const NamespaceSource& source : sources) {
        const auto known = std::find_if(sums.begin(), sums.end(), [&](const NamespaceSource& sum) {
            return Base::equalsIgnoringCase(sum.name, source.name);
        });
        if (known == sums.end())
            sums.push_back(source);
        else
            known->paths.insert(known->paths.end(), source.paths.begin(), source.paths.end());
    }
    return sums;
}

}  // namespace

LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                const std::vector<std::string>& includePath,
                                const Options& options) {
    LoadedRepository loaded;
    std::vector<CimNamespace> namespaces;
    std::size_t bytesLeft = options.maxModelSize;
    bool failed = false;
    for (const NamespaceSource& source : addUp(sources)) {
        Mof::CompilerOptions compilerOptions;
        compilerOptions.includePath = includePath;
        compilerOptions.maxTotalSize = bytesLeft;
        Mof::Compilation compilation = Mof::compile(source.paths, compilerOptions);
        bytesLeft -= std::min(bytesLeft, compilation.bytesRead);
        failed = failed || compilation.hasErrors();
        std::move(compilation.diagnostics.begin(), compilation.diagnostics.end(),
                  std::back_inserter(loaded.diagnostics));
        if (!failed) {
            namespaces.emplace_back(TSKString(source.name), std::move(compilation.classes),
                                    options);
        }
    }
    if (!failed)
        loaded.repository = TSKSmrPtr<ClassRepository>::make(std::move(namespaces));
    return loaded;
}

}  // namespace Repository

// Loads the classes of a namespace of a CIM server into a repository, and prints what
// LoadRepository prints: the number of classes, microseconds of processor time since the process
// was started, and kilobytes of memory at the peak; then the seconds that it took. A process of its
// own, so that nothing else counts.
//
//     LoadServer http://127.0.0.1:5988 root/cimv2 [local-only]

#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "Benchmarks/Support/ProcessUsage.h"
#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/Repository/ClassRepository.h"

int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    const auto begin = std::chrono::steady_clock::now();
    CimXml::CimServer server(
        {.url = argv[1], .localOnly = argc > 3 && std::string_view(argv[3]) == "local-only"});
    CimXml::NamespaceContent content = server.read(argv[2]);
    for (const Mof::Diagnostic& diagnostic : content.compilation.diagnostics)
        std::fputs(diagnostic.toString().c_str(), stderr);
    if (content.compilation.hasErrors())
        return 1;
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back(argv[2], std::move(content.compilation.classes), Repository::Options());
    const Repository::ClassRepository repository(std::move(namespaces));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::printf("%zu %ld %ld %.2f\n", repository.countClasses(), processorTime(), peakMemory(),
                taken.count());
    return 0;
}

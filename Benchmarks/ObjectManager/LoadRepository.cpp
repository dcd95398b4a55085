// Loads the classes of MOF files as the object manager does when it starts, and prints what that
// took: the number of classes, microseconds of processor time since the process was started, and
// kilobytes of memory at the peak. A process of its own, so that nothing else counts.

#include <cstdio>

#include "Benchmarks/Support/ProcessUsage.h"
#include "ObjectManager/Loading/RepositoryLoader.h"

int main(int argc, char** argv) {
    Loading::NamespaceSource source = {.name = "root/cimv2", .paths = {argv + 1, argv + argc}};
    const Loading::LoadedRepository loaded = Loading::loadRepository({source}, {}, {});
    if (!loaded.repository) {
        for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
            std::fputs(diagnostic.toString().c_str(), stderr);
        return 1;
    }
    std::printf("%zu %ld %ld\n", loaded.repository->countClasses(), processorTime(), peakMemory());
    return 0;
}

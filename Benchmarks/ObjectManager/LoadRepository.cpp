// Loads the classes of MOF files as the object manager does when it starts, and prints what that
// took: the number of classes, microseconds of processor time since the process was started, and
// kilobytes of memory at the peak. A process of its own, so that nothing else counts.

#include <cstdio>
#include <fstream>
#include <string>
#include <sys/resource.h>

#include "ObjectManager/Repository/RepositoryLoader.h"

namespace {

long microsecondsOf(const timeval& time) {
    constexpr long kMicrosecondsInSecond = 1'000'000;
    return time.tv_sec * kMicrosecondsInSecond + time.tv_usec;
}

long processorTime() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return microsecondsOf(usage.ru_utime) + microsecondsOf(usage.ru_stime);
}

// Not what getrusage says, which counts the process that started this one.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        long kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Repository::NamespaceSource source = {.name = "root/cimv2", .paths = {argv + 1, argv + argc}};
    const Repository::LoadedRepository loaded = Repository::loadRepository({source}, {}, {});
    if (!loaded.repository) {
        for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
            std::fputs(diagnostic.toString().c_str(), stderr);
        return 1;
    }
    std::printf("%zu %ld %ld\n", loaded.repository->countClasses(), processorTime(), peakMemory());
    return 0;
}

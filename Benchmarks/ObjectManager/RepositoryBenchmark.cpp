// How long classes take to be loaded, how much memory they need, and how fast they are found.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Benchmarks/Support/GeneratedModel.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

// What a process took that loaded classes.
struct Load {
    std::size_t classes = 0;
    long microseconds = 0;
    long kilobytes = 0;
};

Load loadInProcess(const std::filesystem::path& mof) {
    const std::string command = "'" LOADER "' '" + mof.string() + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"),
                                                               &pclose);
    Load load;
    if (pipe == nullptr || std::fscanf(pipe.get(), "%zu %ld %ld", &load.classes, &load.microseconds,
                                       &load.kilobytes) != 3)
        throw std::runtime_error("Cannot run " + command);
    return load;
}

// Processor time counts, from the start of the process until the classes are ready.
void measureLoads(benchmark::State& state, const std::filesystem::path& mof) {
    constexpr double kMicrosecond = 1e-6;
    Load load;
    for (auto _ : state) {
        load = loadInProcess(mof);
        state.SetIterationTime(static_cast<double>(load.microseconds) * kMicrosecond);
    }
    const auto classes = static_cast<double>(load.classes);
    state.counters["classes"] = classes;
    state.counters["peakKilobytes"] = static_cast<double>(load.kilobytes);
    state.counters["classesPerSecond"] =
        benchmark::Counter(classes, benchmark::Counter::kIsIterationInvariantRate);
}

// The goals: 0.10 s and 40,000 kilobytes.
void loadDmtfSchema(benchmark::State& state) {
    const std::string schema = cimSchemaFile();
    if (schema.empty()) {
        state.SetLabel("skipped: CIM_SCHEMA_DIR is not set");
        for (auto _ : state)
            state.SetIterationTime(0);
        return;
    }
    measureLoads(state, schema);
}
BENCHMARK(loadDmtfSchema)->UseManualTime()->Unit(benchmark::kMillisecond);

// The goal: ten times the classes take ten times the time and memory at most.
void loadGeneratedModel(benchmark::State& state) {
    const TemporaryDirectory directory;
    measureLoads(state,
                 writeGeneratedModel(directory.path(), static_cast<std::size_t>(state.range(0))));
}
BENCHMARK(loadGeneratedModel)
    ->Arg(1500)
    ->Arg(15'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void findClass(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const TemporaryDirectory directory;
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{.name = "root/cimv2", .paths = {writeGeneratedModel(directory.path(), count)}}}, {}, {});
    // In lower case, as paths of requests are asked for.
    std::vector<TSKString> names;
    for (std::size_t number = 0; number < count; ++number)
        names.push_back(TSKString(("tst_" + std::to_string(number)).c_str()));
    std::size_t next = 0;
    for (auto _ : state) {
        const TSKSmrPtr<ITeskClass> found = loaded.repository->getClass("Root/CIMv2", names[next]);
        if (!found) {
            state.SkipWithError("a class is not found");
            break;
        }
        benchmark::DoNotOptimize(found.get());
        next = next + 1 == count ? 0 : next + 1;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(findClass)->Arg(1500)->Arg(15'000);

}  // namespace

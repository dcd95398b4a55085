#include <benchmark/benchmark.h>
#include <string>

#include "Platform/Util/TSKString.h"

namespace {

void setBytes(benchmark::State& state, std::size_t bytesAnIteration) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesAnIteration));
}

template <typename Text>
void copyText(benchmark::State& state) {
    const std::string content(static_cast<std::size_t>(state.range(0)), 'x');
    Text text(content.c_str());
    benchmark::DoNotOptimize(&text);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        Text copy = text;
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(copyText<TSKString>)->Arg(10)->Arg(100)->Arg(100'000);
BENCHMARK(copyText<std::string>)->Arg(10)->Arg(100)->Arg(100'000);

template <typename Text>
void appendCharacters(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        Text text;
        for (std::size_t index = 0; index < count; ++index)
            text += 'x';
        benchmark::DoNotOptimize(text.data());
    }
    setBytes(state, count);
}
BENCHMARK(appendCharacters<TSKString>)->Arg(10)->Arg(1000)->Arg(1'000'000);
BENCHMARK(appendCharacters<std::string>)->Arg(10)->Arg(1000)->Arg(1'000'000);

template <typename Text>
void appendPieces(benchmark::State& state) {
    const char* const piece = "    <wsdl:part name=\"body\" element=\"class:";
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        Text text;
        for (std::size_t index = 0; index < count; ++index)
            text += piece;
        benchmark::DoNotOptimize(text.data());
    }
    setBytes(state, count * std::char_traits<char>::length(piece));
}
BENCHMARK(appendPieces<TSKString>)->Arg(10)->Arg(1000)->Arg(100'000);
BENCHMARK(appendPieces<std::string>)->Arg(10)->Arg(1000)->Arg(100'000);

}  // namespace

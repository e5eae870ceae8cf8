// What the trace scope of an operation costs: without a listener, with one that looks away, and with one that writes.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#include "BenchSupport.h"
#include "Publisher/ListenerLibrary.h"
#include "Publisher/Publisher.h"
#include "SingletonSlots.h"
#include "Streams/Trace.h"

namespace {

void Scopes(benchmark::State& state) {
    for (auto iteration : state) {
        TRACE_SCOPE("Bench::Scope");
        benchmark::ClobberMemory();
    }
}

void ScopeWithoutListener(benchmark::State& state) {
    Publisher::ListenerLibrary none({"/no/listener.so"});
    auto* listener = &none;
    std::swap(SingletonWrapper<Publisher::ListenerLibrary>::accessObject(), listener);
    while (none.IsListening()) {
    }
    Scopes(state);
    std::swap(SingletonWrapper<Publisher::ListenerLibrary>::accessObject(), listener);
}
BENCHMARK(ScopeWithoutListener);

void ScopeWithAListenerThatLooksAway(benchmark::State& state) {
    if (Publisher::IsPublishing()) state.SkipWithError("it listens");
    Scopes(state);
}
BENCHMARK(ScopeWithAListenerThatLooksAway);

void ScopeThatIsPublished(benchmark::State& state) {
    if (!Publisher::PublishToFile("/dev/null")) state.SkipWithError("no listener");
    Scopes(state);
    static_cast<void>(Publisher::PublishToFile(""));
}
BENCHMARK(ScopeThatIsPublished);

/// A scope gives two lines when it is published.
bool IsRight() {
    const std::string file = std::filesystem::temp_directory_path() / "tarn-bench-trace.jsonl";
    if (!Publisher::PublishToFile(file)) return false;
    { TRACE_SCOPE("Bench::Check"); }
    static_cast<void>(Publisher::PublishToFile(""));
    std::ifstream stream(file);
    int lines = 0;
    for (std::string line; std::getline(stream, line);)
        ++lines;
    std::filesystem::remove(file);
    return lines == 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (!Bench::start(argc, argv, "none")) return 2;
    if (!IsRight()) {
        std::fprintf(stderr, "Trace: the listener doesn't write what is published\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

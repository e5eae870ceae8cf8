// What loading the plug-in costs a host: its relocation and its static objects, which fill the value tables. Each load
// happens in a process of its own, forked before anything of the plug-in is there, because a second load is cheaper.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

/// The plug-in that was built with this program.
std::string PlugIn() {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libTarnFlows.so").string();
}

/// Seconds for one load, or a negative number when the plug-in can't be loaded or lacks its entry.
double LoadOnce() {
    const auto start = std::chrono::steady_clock::now();
    void* library = dlopen(PlugIn().c_str(), RTLD_NOW | RTLD_LOCAL);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    return library && dlsym(library, "CreateInstance") ? taken.count() : -1.0;
}

double LoadInChild() {
    int ends[2];
    if (pipe(ends) != 0) return -1.0;
    const pid_t child = fork();
    if (child == 0) {
        const double seconds = LoadOnce();
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    close(ends[1]);
    double seconds = -1.0;
    if (child < 0 || read(ends[0], &seconds, sizeof seconds) != sizeof seconds) seconds = -1.0;
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return seconds;
}

void LoadOfThePlugIn(benchmark::State& state) {
    for (auto iteration : state) {
        const double seconds = LoadInChild();
        if (seconds < 0) {
            state.SkipWithError("the plug-in can't be loaded");
            return;
        }
        state.SetIterationTime(seconds);
    }
}
BENCHMARK(LoadOfThePlugIn)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace

int main(int argc, char** argv) {
    if (LoadInChild() < 0) {
        std::fprintf(stderr, "Load: %s can't be loaded\n", PlugIn().c_str());
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}

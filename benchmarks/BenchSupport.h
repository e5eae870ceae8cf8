// What the benchmark programs share: strict options, the facts a figure needs beside it, and the ratio of two ways to
// do the same work, measured in turn so that both meet the same machine.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace Bench {

/// How this program was compiled.
inline const char* buildType() {
#if defined(__OPTIMIZE__) && defined(NDEBUG)
    return "optimised, assertions off";
#elif defined(__OPTIMIZE__)
    return "optimised, assertions on";
#else
    return "unoptimised";
#endif
}

/// Reads Google Benchmark's options and prints kernel and build type. False for an option that nobody knows.
inline bool start(int& argc, char** argv, const char* kernel) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return false;
    benchmark::AddCustomContext("kernel", kernel);
    benchmark::AddCustomContext("build", buildType());
    return true;
}

template <class Work>
double microsecondsOf(Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

inline double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Ratio {
    double ours_us, peer_us;
    double value() const { return ours_us / peer_us; }
};

/// Medians of `rounds` runs of each, one after the other.
template <class Ours, class Peer>
Ratio measureRatio(Ours&& ours, Peer&& peer, int rounds = 201) {
    std::vector<double> ourTimes, peerTimes;
    ours();
    peer();
    for (int round = 0; round < rounds; round++) {
        ourTimes.push_back(microsecondsOf(ours));
        peerTimes.push_back(microsecondsOf(peer));
    }
    return {medianOf(ourTimes), medianOf(peerTimes)};
}

/// One line of the ratio table, such as "ratio 4096 bins: 0.63 (tarn 250 us, fftw 397 us)".
inline void printRatio(const std::string& what, const Ratio& ratio, const char* peer) {
    std::printf("ratio %s: %.2f (tarn %.4g us, %s %.4g us)\n", what.c_str(), ratio.value(), ratio.ours_us, peer,
                ratio.peer_us);
    std::fflush(stdout);
}

/// The same beside a plain copy that reads and writes `traffic` bytes, half of them each.
template <class Ours>
void compareToCopy(const std::string& what, Ours&& ours, std::size_t traffic) {
    std::vector<char> from(traffic / 2, 1), to(traffic / 2);
    const auto copy = [&] {
        std::memcpy(to.data(), from.data(), to.size());
        benchmark::ClobberMemory();
    };
    printRatio(what + " to a copy with the same traffic", measureRatio(ours, copy), "memcpy");
}

}  // namespace Bench

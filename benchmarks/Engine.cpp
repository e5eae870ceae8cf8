// Speed of the engine's operations on one sweep of 98304 samples on one chain: intake, spectrum, peak search and the
// I/Q dump. Each is checked against a reference before it is timed. With FFTW at hand, the same spectrum on its fastest
// plan of one block stands beside.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>
#include <tuple>

#include "BenchSupport.h"
#include "Kelp.h"
#include "LumenSA.h"
#if TARN_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

using namespace LumenSpectrumAnalyzer;
using Reals = std::vector<double>;

constexpr unsigned kSamples = 98304;
constexpr double kGain = 31.25;
constexpr int kPeakWindow = 10;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s differs from the reference\n", what);
    std::exit(EXIT_FAILURE);
}

/// ADC codes of three chains, of which the first has data.
struct Codes {
    Codes() {
        std::mt19937 generator(1);
        std::uniform_int_distribution<int> code(-2048, 2047);
        for (int c = 0; c < CLmnSA::MaxChains; c++) {
            i[c].resize(kSamples);
            q[c].resize(kSamples);
        }
        for (unsigned k = 0; k < kSamples; k++) {
            i[0][k] = code(generator) + 100;
            q[0][k] = code(generator) - 50;
        }
        i[0].back() = 101;  // a last sample that is no padding
    }
    void addTo(CLmnSA& engine) const {
        const double* const is[] = {i[0].data(), i[1].data(), i[2].data()};
        const double* const qs[] = {q[0].data(), q[1].data(), q[2].data()};
        engine.AddSweep(is, qs, kSamples, 1);
    }
    Reals i[CLmnSA::MaxChains], q[CLmnSA::MaxChains];
};

void tune(CLmnSA& engine, double sampleRate, double rbw, int bandwidth) {
    engine.m_SampleRate = sampleRate;
    engine.m_RBW = rbw;
    engine.m_Bandwidth = bandwidth;
    engine.m_CenterFreq = 6105;
    engine.m_ChainName = "A";
    engine.m_NumOfChannels = 1;
    engine.m_WindowSize = kPeakWindow;
    engine.SetFileGain(kGain);
}

void checkIntake(const CLmnSA& engine, const Codes& codes) {
    const double meanI = std::trunc(std::accumulate(codes.i[0].begin(), codes.i[0].end(), 0.0) / kSamples);
    const double meanQ = std::trunc(std::accumulate(codes.q[0].begin(), codes.q[0].end(), 0.0) / kSamples);
    for (unsigned k = 0; k < kSamples; k++)
        if (engine.m_CurrSweep[0]->val[2 * k] != codes.i[0][k] - meanI ||
            engine.m_CurrSweep[0]->val[2 * k + 1] != codes.q[0][k] - meanQ ||
            engine.m_ISweep[0]->val[k] != codes.i[0][k] - meanI || engine.m_QSweep[0]->val[k] != codes.q[0][k] - meanQ)
            fail("the intake");
}

/// Some bins by the sum of the definition.
void checkSpectrum(const CLmnSA& engine) {
    const std::size_t bins = engine.m_NumOfBins;
    const double* const sweep = engine.m_CurrSweep[0]->val;
    for (const std::size_t bin : {std::size_t{0}, bins / 3, bins - 1}) {
        double power = 0;
        for (std::size_t block = 0; block < engine.m_NumOfSubBuffers; block++) {
            std::complex<double> sum;
            for (std::size_t n = 0; n < bins; n++) {
                const double* const sample = sweep + 2 * (block * bins + n);
                const double turn = static_cast<double>(n * bin % bins) / static_cast<double>(bins);
                sum += std::complex<double>(sample[0], sample[1]) * std::polar(1.0, -2 * M_PI * turn);
            }
            power += std::norm(sum / static_cast<double>(bins)) / engine.m_NumOfSubBuffers;
        }
        const double found = engine.m_Spectrum[0]->val[(bin + bins / 2) % bins];
        if (!(std::abs(found - (10 * std::log10(power) - kGain)) < 1e-8)) fail("the spectrum");
    }
}

/// The search with three sums at each position.
void checkPeaks(CLmnSA& engine) {
    int start = 0;
    int end = 0;
    engine.CalculateFreqIndices(engine.m_Bandwidth, engine.m_SampleRate, engine.m_NumOfBins, &start, &end);
    const double* const band = engine.m_Spectrum[0]->val + start;
    const auto mean = [band](int first) {
        return std::accumulate(band + first, band + first + kPeakWindow, 0.0) / kPeakWindow;
    };
    Reals powers;
    for (int i = 0; i <= end - start - 3 * kPeakWindow; i++) {
        if (mean(i + kPeakWindow) <= mean(i) || mean(i + kPeakWindow) <= mean(i + 2 * kPeakWindow)) continue;
        powers.push_back(*std::max_element(band + i + kPeakWindow, band + i + 2 * kPeakWindow));
        i += kPeakWindow - 1;
    }
    std::sort(powers.rbegin(), powers.rend());
    PeakList found[CLmnSA::MaxChains];
    engine.FindMaxPoints();
    engine.UpdatePeaksData(found);
    if (powers.empty() || !std::equal(powers.begin(), powers.end(), found[0].begin(), found[0].end(),
                                      [](double power, const auto& peak) { return power == peak.second; }))
        fail("the peak search");
}

void checkDump(CLmnSA& engine, const std::string& path) {
    engine.DumpIQ(path);
    std::ostringstream expected;
    std::ostringstream found;
    for (unsigned k = 0; k < kSamples; k++)
        expected << engine.m_ISweep[0]->val[k] << "," << engine.m_QSweep[0]->val[k] << ",\n";
    found << std::ifstream(path, std::ios::binary).rdbuf();
    if (found.str() != expected.str()) fail("the I/Q dump");
}

/// Processor time of one run in microseconds: a dump also waits for the disk.
template <class Work>
double cpuMicrosecondsOf(Work&& work, int rounds) {
    const std::clock_t begin = std::clock();
    for (int round = 0; round < rounds; round++)
        work();
    return 1e6 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / rounds;
}

#if TARN_HAVE_FFTW
/// What the engine's update does, block by block on FFTW, with the compiler's loops and the library's logarithm.
class Peer {
public:
    explicit Peer(const CLmnSA& engine)
        : m_bins(static_cast<int>(engine.m_NumOfBins)), m_power(engine.m_NumOfBins), m_decibels(engine.m_NumOfBins) {
        m_sweep = fftw_alloc_complex(kSamples);
        m_block = fftw_alloc_complex(engine.m_NumOfBins);
        m_plan = fftw_plan_dft_1d(m_bins, m_sweep, m_block, FFTW_FORWARD, FFTW_MEASURE | FFTW_PRESERVE_INPUT);
        std::memcpy(m_sweep, engine.m_CurrSweep[0]->val, kSamples * sizeof *m_sweep);
    }
    ~Peer() {
        fftw_destroy_plan(m_plan);
        fftw_free(m_sweep);
        fftw_free(m_block);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    void run() {
        const int blocks = static_cast<int>(kSamples) / m_bins;
        std::fill(m_power.begin(), m_power.end(), 0.0);
        for (int block = 0; block < blocks; block++) {
            fftw_execute_dft(m_plan, m_sweep + block * m_bins, m_block);
            for (int k = 0; k < m_bins; k++)
                m_power[static_cast<std::size_t>(k)] += m_block[k][0] * m_block[k][0] + m_block[k][1] * m_block[k][1];
        }
        const double scale = 1.0 / (static_cast<double>(m_bins) * m_bins * blocks);
        const std::size_t half = m_power.size() / 2;
        m_channelPower = 0;
        for (std::size_t k = 0; k < m_power.size(); k++) {
            m_channelPower += m_power[k] * scale;
            m_decibels[(k + half) % m_power.size()] = 10 * std::log10(m_power[k] * scale) - kGain;
        }
        benchmark::DoNotOptimize(m_channelPower);
    }
    const Reals& result() const { return m_decibels; }

private:
    int m_bins;
    Reals m_power, m_decibels;
    double m_channelPower = 0;
    fftw_complex *m_sweep, *m_block;
    fftw_plan m_plan;
};
#endif

void compareSpectrum([[maybe_unused]] CLmnSA& engine) {
#if TARN_HAVE_FFTW
    Peer peer(engine);
    peer.run();
    for (std::size_t k = 0; k < peer.result().size(); k++)
        if (!(std::abs(peer.result()[k] - engine.m_Spectrum[0]->val[k]) < 1e-8)) fail("the spectrum");
    Bench::printRatio("update at " + std::to_string(engine.m_NumOfBins) + " bins",
                      Bench::measureRatio([&] { engine.UpdateFromLastSweep(); }, [&] { peer.run(); }), "fftw");
#endif
}

void compareIntake(CLmnSA& engine, const Codes& codes) {
    // All three chains are read and stored as 16 bits; the used one is written four doubles a sample.
    constexpr std::size_t Traffic =
        kSamples * (CLmnSA::MaxChains * (2 * sizeof(double) + sizeof(IQBuffer)) + 4 * sizeof(double));
    Bench::compareToCopy(
        "intake", [&] { codes.addTo(engine); }, Traffic);
}

template <class Work>
void add(const std::string& name, Work work) {
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) {
        for (auto _ : state)
            work();
    })->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
    if (kelpInit() < 0) {
        std::fprintf(stderr, "TARN_KERNEL names no kernel of this processor\n");
        return EXIT_FAILURE;
    }
    if (!Bench::start(argc, argv, kelpKernelName())) return EXIT_FAILURE;
    const Codes codes;
    const std::string path = (std::filesystem::temp_directory_path() / "tarn_bench_engine.txt").string();
    // 512, 1024, 2048, 4096 and 8192 bins; the last with a band of half the spectrum, so that there is something to
    // search.
    std::vector<std::unique_ptr<CLmnSA>> engines;
    for (const auto& [rate, rbw, bandwidth] : {std::tuple{80.0, 156.25, 80},
                                               {40.0, 39.0625, 40},
                                               {80.0, 39.0625, 80},
                                               {160.0, 39.0625, 160},
                                               {320.0, 39.0625, 160}}) {
        engines.push_back(std::make_unique<CLmnSA>());
        CLmnSA& engine = *engines.back();
        tune(engine, rate, rbw, bandwidth);
        codes.addTo(engine);
        engine.UpdateFromLastSweep();
        checkIntake(engine, codes);
        checkSpectrum(engine);
        checkPeaks(engine);
        const std::string bins = "/" + std::to_string(engine.m_NumOfBins);
        add("update" + bins, [&engine] { engine.UpdateFromLastSweep(); });
        add("peak search" + bins, [&engine] { engine.FindMaxPoints(); });
    }
    CLmnSA& engine = *engines.back();
    checkDump(engine, path);
    add("intake", [&] { codes.addTo(engine); });
    add("I/Q dump", [&] { engine.DumpIQ(path); });
    benchmark::RunSpecifiedBenchmarks();

    std::printf("kernel %s, %s, one sweep of %u samples\n", kelpKernelName(), Bench::buildType(), kSamples);
    for (const auto& each : engines)
        compareSpectrum(*each);
    compareIntake(engine, codes);
    std::printf("I/Q dump: %.4g us of processor time\n", cpuMicrosecondsOf([&] { engine.DumpIQ(path); }, 50));
    std::filesystem::remove(path);
    return EXIT_SUCCESS;
}

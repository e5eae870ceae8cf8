// Speed of the vector primitives on one sweep of 98304 samples: spectrum and intake. Each kernel function is checked
// against a reference before it is timed. With FFTW at hand, its fastest plan for the same work stands beside.
#include "Kelp.h"

#include <cmath>
#include <complex>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

#include "BenchSupport.h"
#if TARN_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

constexpr int kSamples = 98304;
constexpr double kGain = 31.25;
using Complexes = std::vector<Kelp64fc>;
using Reals = std::vector<double>;

struct KelpFree {
    void operator()(std::uint8_t* p) const { kelpsFree(p); }
};
using Memory = std::unique_ptr<std::uint8_t, KelpFree>;
Memory allocate(std::int32_t bytes) {
    return Memory(static_cast<std::uint8_t*>(kelpMalloc(bytes)));
}

[[noreturn]] void fail(const char* what, int bins) {
    std::fprintf(stderr, "%s of %d bins differs from the reference\n", what, bins);
    std::exit(EXIT_FAILURE);
}

Complexes makeSweep() {
    std::mt19937 generator(1);
    std::uniform_int_distribution<int> code(-2048, 2047);
    Complexes sweep(kSamples);
    for (auto& sample : sweep)
        sample = {static_cast<double>(code(generator)), static_cast<double>(code(generator))};
    return sweep;
}

/// From a sweep to decibels, the lowest frequency first.
class Spectrum {
public:
    Spectrum(const Complexes& sweep, int order)
        : m_sweep(sweep), m_bins(1 << order), m_mean(bins()), m_decibels(bins()) {
        std::int32_t sizes[3];
        kelpsFFTGetSize_C_64fc(order, 1, 0, &sizes[0], &sizes[1], &sizes[2]);
        m_memory = allocate(sizes[0]);
        m_work = allocate(sizes[2]);
        kelpsFFTInit_C_64fc(&m_spec, order, 1, 0, m_memory.get(), m_work.get());
    }
    std::size_t bins() const { return static_cast<std::size_t>(m_bins); }
    void power() { kelpsSweepPower_64fc(m_sweep.data(), kSamples / m_bins, m_mean.data(), m_spec, m_work.get()); }
    void decibels() {
        const std::size_t half = bins() / 2;
        kelpsLog10_64f_A53(m_mean.data(), m_mean.data(), m_bins);
        kelpsMulC_64f(m_mean.data(), 10.0, m_mean.data(), m_bins);
        kelpsSubC_64f_I(kGain, m_mean.data(), m_bins);
        std::memcpy(m_decibels.data(), m_mean.data() + half, half * sizeof(double));
        std::memcpy(m_decibels.data() + half, m_mean.data(), half * sizeof(double));
    }
    void run() {
        power();
        decibels();
    }
    void forward(Complexes& block) { kelpsFFTFwd_CToC_64fc_I(block.data(), m_spec, m_work.get()); }
    const Reals& result() const { return m_decibels; }

    /// Three bins by the sum of the definition, in long double.
    void check() {
        run();
        for (const std::size_t bin : {std::size_t{0}, bins() / 3, bins() - 1}) {
            long double power = 0.0L;
            const std::size_t blocks = kSamples / bins();
            for (std::size_t block = 0; block < blocks; block++) {
                std::complex<long double> sum;
                for (std::size_t n = 0; n < bins(); n++) {
                    const long double turn =
                        static_cast<long double>(n * bin % bins()) / static_cast<long double>(bins());
                    const std::complex<long double> sample(m_sweep[block * bins() + n]);
                    sum += sample * std::polar(1.0L, -2.0L * 3.14159265358979323846264L * turn);
                }
                power += std::norm(sum / static_cast<long double>(bins())) / static_cast<long double>(blocks);
            }
            const double expected = static_cast<double>(10.0L * std::log10(power)) - kGain;
            if (!(std::abs(m_decibels[(bin + bins() / 2) % bins()] - expected) < 1e-9)) fail("the spectrum", m_bins);
        }
    }

private:
    const Complexes& m_sweep;
    int m_bins;
    Reals m_mean, m_decibels;
    Memory m_memory, m_work;
    KelpsFFTSpec_C_64fc* m_spec = nullptr;
};

/// Intake of one chain, as the engine does it.
struct Intake {
    explicit Intake(const Complexes& sweep)
        : i(kSamples), q(kSamples), iq(2 * kSamples), cplx(kSamples), realI(kSamples), realQ(kSamples) {
        for (std::size_t k = 0; k < sweep.size(); k++) {
            i[k] = sweep[k].real() + 100.0;
            q[k] = sweep[k].imag() - 50.0;
        }
    }
    void run() {
        double sumI = 0.0, sumQ = 0.0;
        int last = 0;
        kelpsTruncInterleave_64f16s(i.data(), q.data(), iq.data(), kSamples);
        kelpsLastNonZeroPair_16s(iq.data(), kSamples, &last);
        kelpsSumPairs_16s64f(iq.data(), last + 1, &sumI, &sumQ);
        meanI = static_cast<Kelp16s>(sumI / (last + 1));
        meanQ = static_cast<Kelp16s>(sumQ / (last + 1));
        kelpsSubCPairs_16s_I(meanI, meanQ, iq.data(), last + 1);
        kelpsFanOut_16s64f(iq.data(), cplx.data(), realI.data(), realQ.data(), last + 1);
    }
    void check() {
        run();
        for (std::size_t k = 0; k < cplx.size(); k++)
            if (cplx[k] != Kelp64fc(i[k] - meanI, q[k] - meanQ) || cplx[k] != Kelp64fc(realI[k], realQ[k]))
                fail("the intake", kSamples);
    }
    /// Bytes that are read and written, once each.
    static constexpr std::size_t traffic = kSamples * (2 * sizeof(double) + 2 * sizeof(Kelp16s) + 4 * sizeof(double));
    Reals i, q;
    std::vector<Kelp16s> iq;
    Complexes cplx;
    Reals realI, realQ;
    Kelp16s meanI = 0, meanQ = 0;
};

#if TARN_HAVE_FFTW
/// The same spectrum on FFTW: the fastest of four plans, measured first.
class Peer {
public:
    Peer(const Complexes& sweep, int order)
        : m_bins(1 << order), m_blocks(kSamples / m_bins), m_mean(bins()), m_decibels(bins()) {
        m_sweep = fftw_alloc_complex(kSamples);
        m_out = fftw_alloc_complex(kSamples);
        const unsigned flags = FFTW_MEASURE | FFTW_PRESERVE_INPUT;
        m_plans[0] = fftw_plan_dft_1d(m_bins, m_out, m_out, FFTW_FORWARD, FFTW_MEASURE);
        m_plans[1] = fftw_plan_dft_1d(m_bins, m_sweep, m_out, FFTW_FORWARD, flags);
        m_plans[2] = many(m_out, FFTW_MEASURE);
        m_plans[3] = many(m_sweep, flags);
        std::memcpy(m_sweep, sweep.data(), sweep.size() * sizeof sweep[0]);
        double best_us = 1e300;
        for (int plan = 0; plan < 4; plan++) {
            std::vector<double> times;
            auto work = [&] { power(plan); };
            for (int round = 0; round < 51; round++)
                times.push_back(Bench::microsecondsOf(work));
            if (Bench::medianOf(times) < best_us) {
                best_us = Bench::medianOf(times);
                m_best = plan;
            }
        }
    }
    ~Peer() {
        for (const fftw_plan plan : m_plans)
            fftw_destroy_plan(plan);
        fftw_free(m_sweep);
        fftw_free(m_out);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    void run() {
        power(m_best);
        const double scale = 1.0 / (static_cast<double>(m_bins) * m_bins * m_blocks);
        const std::size_t half = bins() / 2;
        for (std::size_t k = 0; k < bins(); k++)
            m_mean[k] = 10.0 * std::log10(m_mean[k] * scale) - kGain;
        std::memcpy(m_decibels.data(), m_mean.data() + half, half * sizeof(double));
        std::memcpy(m_decibels.data() + half, m_mean.data(), half * sizeof(double));
    }
    const Reals& result() const { return m_decibels; }
    const char* planName() const {
        static const char* const names[] = {"in place", "out of place", "batch in place", "batch out of place"};
        return names[m_best];
    }

private:
    std::size_t bins() const { return static_cast<std::size_t>(m_bins); }
    fftw_plan many(fftw_complex* in, unsigned flags) {
        return fftw_plan_many_dft(1, &m_bins, m_blocks, in, nullptr, 1, m_bins, m_out, nullptr, 1, m_bins, FFTW_FORWARD,
                                  flags);
    }
    void add(const fftw_complex* block) {
        double* mean = m_mean.data();
        for (int k = 0; k < m_bins; k++)
            mean[k] += block[k][0] * block[k][0] + block[k][1] * block[k][1];
    }
    void power(int plan) {
        std::fill(m_mean.begin(), m_mean.end(), 0.0);
        if (plan >= 2) {
            if (plan == 2) std::memcpy(m_out, m_sweep, kSamples * sizeof *m_out);
            fftw_execute(m_plans[plan]);
            for (int block = 0; block < m_blocks; block++)
                add(m_out + block * m_bins);
            return;
        }
        for (int block = 0; block < m_blocks; block++) {
            fftw_complex* source = m_sweep + block * m_bins;
            if (plan == 0) std::memcpy(m_out, source, bins() * sizeof *m_out);
            fftw_execute_dft(m_plans[plan], plan == 0 ? m_out : source, m_out);
            add(m_out);
        }
    }

    int m_bins, m_blocks, m_best = 0;
    Reals m_mean, m_decibels;
    fftw_complex *m_sweep, *m_out;
    fftw_plan m_plans[4];
};
#endif

void registerAll(std::vector<std::unique_ptr<Spectrum>>& spectra, const Complexes& sweep, Intake& intake) {
    for (int order = 7; order <= 13; order++) {
        spectra.push_back(std::make_unique<Spectrum>(sweep, order));
        Spectrum* spectrum = spectra.back().get();
        spectrum->check();
        const auto add = [&](const char* what, auto work) {
            const std::string name = what + std::string("/") + std::to_string(1 << order);
            benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) mutable {
                for (auto _ : state)
                    work();
            })->Unit(benchmark::kMicrosecond);
        };
        add("sweep power", [spectrum] { spectrum->power(); });
        add("sweep to decibels", [spectrum] { spectrum->run(); });
        add("forward transform",
            [spectrum, block = Complexes(spectrum->bins())]() mutable { spectrum->forward(block); });
    }
    intake.check();
    benchmark::RegisterBenchmark("intake of a chain", [&intake](benchmark::State& state) {
        for (auto _ : state)
            intake.run();
    })->Unit(benchmark::kMicrosecond);
}

void printRatios([[maybe_unused]] std::vector<std::unique_ptr<Spectrum>>& spectra,
                 [[maybe_unused]] const Complexes& sweep, Intake& intake) {
#if TARN_HAVE_FFTW
    for (const auto& spectrum : spectra) {
        const int bins = static_cast<int>(spectrum->bins());
        Peer peer(sweep, static_cast<int>(std::log2(bins)));
        peer.run();
        spectrum->run();
        for (std::size_t k = 0; k < spectrum->bins(); k++)
            if (!(std::abs(peer.result()[k] - spectrum->result()[k]) < 1e-9)) fail("the spectrum", bins);
        const auto ratio = Bench::measureRatio([&] { spectrum->run(); }, [&] { peer.run(); });
        Bench::printRatio(std::to_string(bins) + " bins", ratio, (std::string("fftw ") + peer.planName()).c_str());
    }
#endif
    Bench::compareToCopy(
        "intake of a chain", [&] { intake.run(); }, Intake::traffic);
}

}  // namespace

int main(int argc, char** argv) {
    if (kelpInit() < 0) {
        std::fprintf(stderr, "TARN_KERNEL names no kernel of this processor\n");
        return EXIT_FAILURE;
    }
    if (!Bench::start(argc, argv, kelpKernelName())) return EXIT_FAILURE;
    const Complexes sweep = makeSweep();
    Intake intake(sweep);
    std::vector<std::unique_ptr<Spectrum>> spectra;
    registerAll(spectra, sweep, intake);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("kernel %s, %s, one sweep of %d samples\n", kelpKernelName(), Bench::buildType(), kSamples);
    printRatios(spectra, sweep, intake);
    return EXIT_SUCCESS;
}

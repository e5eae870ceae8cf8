// The spectrum read in dB: a scene of noise and tones against level masks and a direct Fourier sum.
#include <gtest/gtest.h>

#include <random>

#include "EngineHelp.h"
#include "Kelp.h"

namespace {

constexpr double NoiseSigma = 20;  ///< of I and of Q
constexpr unsigned Samples = 98304;
constexpr double Gain = 12.5;
constexpr double SampleRates[] = {40, 80, 160, 320};
constexpr double Rbws[] = {39.0625, 78.125, 156.25, 312.5};

/// White noise with tones of 60 dB an eighth of the spectrum above the centre and of 40 dB a quarter below.
Codes Scene(unsigned bins) {
    static const Codes noise = [] {
        Codes codes(Samples);
        std::mt19937_64 random(2026);
        std::normal_distribution<double> normal(0, NoiseSigma);
        for (unsigned n = 0; n < Samples; ++n) {
            codes.i[0][n] = normal(random);
            codes.q[0][n] = normal(random);
        }
        return codes;
    }();
    Codes codes = noise;
    AddTone(codes, 0, 1000, bins / 8, bins);
    AddTone(codes, 0, 100, -static_cast<double>(bins / 4), bins);
    return codes;
}

/// Mean power of one bin over all whole blocks, by the Fourier sum itself.
double DirectPower(const double* sweep, unsigned bins, unsigned blocks, unsigned bin) {
    double total = 0;
    for (unsigned b = 0; b < blocks; ++b) {
        std::complex<double> sum = 0;
        for (unsigned n = 0; n < bins; ++n) {
            const double* const sample = sweep + 2 * (std::size_t{b} * bins + n);
            const double angle = -2 * M_PI * (std::size_t{n} * bin % bins) / bins;
            sum += std::complex<double>(sample[0], sample[1]) * std::complex<double>(std::cos(angle), std::sin(angle));
        }
        total += std::norm(sum) / bins / bins;
    }
    return total / blocks;
}

/// Deviation in dB that a mean over `blocks` exponential powers exceeds once in some 1e9 (Wilson and Hilferty's cube
/// root form of the chi-square quantile at six deviations).
double NoiseLimitDb(unsigned blocks, double deviations) {
    const double v = 1.0 / (9.0 * blocks);
    return 30 * std::log10(1 - v + deviations * std::sqrt(v));
}

void ExpectScene(CLmnSA& engine, unsigned bins) {
    const double* const spectrum = engine.m_Spectrum[0]->val;
    const unsigned blocks = Samples / bins;
    const double noiseDb = 10 * std::log10(2 * (NoiseSigma * NoiseSigma + 1.0 / 12) / bins) - Gain;
    double meanPower = 0;
    for (unsigned k = 0; k < bins; ++k) {
        const bool isTone = k == bins / 2 + bins / 8 || k == bins / 4;
        const double tone = (k == bins / 4 ? 40 : 60) - Gain;
        const double low = isTone ? tone - 1 : noiseDb + NoiseLimitDb(blocks, -6);
        const double high = isTone ? tone + 1 : noiseDb + NoiseLimitDb(blocks, 6);
        if (!isTone) meanPower += std::pow(10, (spectrum[k] + Gain) / 10) / (bins - 2);
        EXPECT_FALSE(!(spectrum[k] >= low && spectrum[k] <= high)) << "bin " << k << " reads " << spectrum[k];
    }
    EXPECT_NEAR(10 * std::log10(meanPower), noiseDb + Gain, 0.1);
    for (const unsigned bin : {0u, 1u, bins / 8, bins / 2 - 1, bins / 2, bins - bins / 4, bins - 1}) {
        const double direct = DirectPower(engine.m_CurrSweep[0]->val, bins, blocks, bin);
        EXPECT_NEAR(spectrum[(bin + bins / 2) % bins], 10 * std::log10(direct) - Gain, 1e-8) << "bin " << bin;
    }
}

TEST(Spectrum, NoiseAndTonesReadTheirLevelsAtEverySampleRateRbwAndKernel) {
    for (const double rate : SampleRates)
        for (const double rbw : Rbws) {
            const auto bins = static_cast<unsigned>(std::lround(rate / rbw * 1000));
            const Codes codes = Scene(bins);
            for (const char* const* kernel = kelpKernelNames(); *kernel; ++kernel) {
                SCOPED_TRACE(std::to_string(rate) + " MHz, " + std::to_string(rbw) + " kHz, " + *kernel);
                CLmnSA engine;  // its start chooses a kernel
                ASSERT_TRUE(kelpForceKernel(*kernel));
                Tune(engine, rate, rbw, 20);
                engine.SetFileGain(Gain);
                Measure(engine, codes);
                ASSERT_STREQ(kelpsFFTKernelName(engine.m_pFFTSpec), *kernel);
                ASSERT_EQ(engine.GetNumOfBins(), bins);
                ExpectScene(engine, bins);
            }
            kelpInit();
        }
}

TEST(Spectrum, FrequencyCompensationDoublesThePowerAtTheCutoff) {
    for (const auto& [bandwidth, cutoff] : {std::pair{20, 9.0}, {40, 18.0}, {80, 36.0}, {160, 72.0}, {320, 1.0}}) {
        CLmnSA plain;
        CLmnSA lifted;
        lifted.SetProperty(LmnSAProperty::FreqCompensation, true);
        const Codes codes = Scene(512);
        for (CLmnSA* engine : {&plain, &lifted}) {
            Tune(*engine, 160, 312.5, bandwidth);
            Measure(*engine, codes);
        }
        for (int k = 0; k < 512; ++k) {
            const double distance = (k - 256) * 0.3125;
            EXPECT_NEAR(At(lifted, k - 256) - At(plain, k - 256),
                        10 * std::log10(1 + distance * distance / cutoff / cutoff), 1e-9)
                << bandwidth << " MHz, bin " << k;
        }
    }
}

TEST(Spectrum, ASilentBinIsMinusInfinityAndPasses) {
    CLmnSA engine;
    Tune(engine, 40, 312.5, 20);
    Codes codes(128);
    codes.i[0].assign(128, 5);  // nothing but DC, which the intake takes off
    Measure(engine, codes);
    for (int k = 0; k < 128; ++k)
        EXPECT_EQ(engine.m_Spectrum[0]->val[k], -INFINITY) << k;
}

}  // namespace

// Drives the radio as the flows do, and reads levels by plain sums.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <string>
#include <vector>

#include "GainModel.h"
#include "RadioSetup.h"
#include "Support/TempFolder.h"

namespace radiotest {

using Folder = Support::TempFolder;
using Samples = std::vector<std::complex<double>>;

struct Tuning {
    std::uint32_t band = 0, bandwidth = 0, channel = 6;
    std::uint32_t selector = 1;  // 1 A, 2 B, 3 both
    std::uint32_t preLna = 0, internalGain = 0;
};

/// Stored captures are heard as tuned.
inline void UseRadio(const std::string& adapter, const std::string& air) {
    const auto reason = quayCommand::SetUpRadio({adapter, air, "", "", quayCommand::StoredTuning::AsTuned});
    ASSERT_FALSE(reason) << *reason;
}

/// Hears a scene, given by its text.
inline void UseScene(const std::string& text, const std::string& adapter = "") {
    const Folder folder;
    UseRadio(adapter, "sim:" + folder.Write("scene.json", text));
}

/// A scene of one tone.
inline std::string Tone(double frequencyMhz, double levelDbm) {
    return "{\"tones\": [{\"frequency_mhz\": " + std::to_string(frequencyMhz) +
           ", \"level_dbm\": " + std::to_string(levelDbm) + "}]}";
}

/// Why the set-up is refused; "accepted" if it isn't.
inline std::string ReasonOf(const quayCommand::RadioSetup& setup) {
    return quayCommand::SetUpRadio(setup).value_or("accepted");
}

inline Samples SamplesOf(const quayCommand::RecordedChain& chain) {
    Samples samples(chain.i.size());
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = {chain.i[n], chain.q[n]};
    return samples;
}

/// One capture, chain by chain; none when the radio captured nothing.
inline std::vector<Samples> Capture(const Tuning& tuning) {
    const quayCommand::RecordGain gain{tuning.internalGain, tuning.preLna};
    const auto recording =
        quayCommand::RecordCapture({{tuning.band, tuning.bandwidth, tuning.channel}, tuning.selector, {gain, gain}});
    std::vector<Samples> chains;
    if (recording.IsRefused()) return chains;
    for (const auto& chain : recording->chains)
        chains.push_back(SamplesOf(chain));
    return chains;
}

inline double RateMhz(std::uint32_t bandwidth) {
    return bandwidth == 0 ? 40.0 : 20.0 * (1 << bandwidth);
}

/// Gain that the engine takes off the default adapter's chain.
inline double GainDb(const Tuning& tuning, const char* chain) {
    using namespace LumenSpectrumAnalyzer;
    return ManualGain(ChipFamily::Pine, tuning.preLna, tuning.internalGain, tuning.band, chain, tuning.channel, 0);
}

inline double Db(double power) {
    return 10.0 * std::log10(power);
}

/// Component at an offset from the centre: mean of x times the conjugate tone, over `count` samples from `first`.
inline std::complex<double> ToneOf(const Samples& x, double turnsPerSample, std::size_t first, std::size_t count) {
    std::complex<double> sum;
    for (std::size_t n = 0; n < count; ++n)
        sum += x[first + n] * std::polar(1.0, -2.0 * std::numbers::pi * turnsPerSample * static_cast<double>(n));
    return sum / static_cast<double>(count);
}

/// Level of a tone at the antenna of the default adapter's chain.
inline double ToneDbm(const Samples& x, double offsetMhz, const Tuning& tuning, const char* chain = "A") {
    return Db(std::norm(ToneOf(x, offsetMhz / RateMhz(tuning.bandwidth), 0, x.size()))) - GainDb(tuning, chain);
}

/// Mean power of `count` samples from `first`.
inline double PowerDb(const Samples& x, std::size_t first, std::size_t count) {
    double power = 0.0;
    for (std::size_t n = first; n < first + count; ++n)
        power += std::norm(x[n]) / static_cast<double>(count);
    return Db(power);
}

/// The samples as a receiver hears them that is tuned `offsetMhz` higher.
inline Samples Retuned(Samples x, double offsetMhz, double rateMhz) {
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] *= std::polar(1.0, -2.0 * std::numbers::pi * offsetMhz / rateMhz * static_cast<double>(n));
    return x;
}

/// Power within +-width / 2 of the centre, by direct transforms of blocks of 128 samples without a window.
inline double ChannelPowerDb(const Samples& x, double widthMhz, double rateMhz) {
    constexpr int N = 128;
    std::vector<std::complex<double>> turn(N);
    for (int k = 0; k < N; ++k)
        turn[static_cast<std::size_t>(k)] = std::polar(1.0, -2.0 * std::numbers::pi * k / N);
    const int half = static_cast<int>(widthMhz / rateMhz * N / 2);
    double power = 0.0;
    const std::size_t blocks = x.size() / N;
    for (std::size_t b = 0; b < blocks; ++b) {
        for (int k = -half; k <= half; ++k) {
            if (k == N / 2) continue;  // the same bin as -N / 2
            std::complex<double> sum;
            for (int n = 0; n < N; ++n)
                sum += x[b * N + static_cast<std::size_t>(n)] * turn[static_cast<std::size_t>((k + N) * n % N)];
            power += std::norm(sum / static_cast<double>(N));
        }
    }
    return Db(power / static_cast<double>(blocks));
}

}  // namespace radiotest

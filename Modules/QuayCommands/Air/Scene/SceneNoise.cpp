// Noise: the receiver's own, and the shaped noise of a platform.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Air/Scene/Fft.h"
#include "Air/Scene/Random.h"
#include "Air/Scene/SceneSignal.h"

namespace quayCommand {
namespace {

constexpr double ThermalDbmPerMhz = -114.0;  // kT at 290 K: -174 dBm/Hz
constexpr std::uint64_t ThermalNoiseId = 0x5448;

/// Density at a frequency in mW per MHz.
double DensityAt(const NoiseBand& band, double mhz) {
    const auto& points = band.points;
    if (mhz < points.front().mhz || mhz > points.back().mhz) return 0.0;
    const auto right = std::find_if(points.begin() + 1, points.end(), [&](const auto& p) { return mhz <= p.mhz; });
    const auto left = right - 1;
    const double share = (mhz - left->mhz) / (right->mhz - left->mhz);
    return std::pow(10.0, (left->dbmPerMhz + share * (right->dbmPerMhz - left->dbmPerMhz)) / 10.0);
}

/// Adds one block of shaped noise that is faded in and out by a half sine: blocks that overlap by half add up to steady
/// power.
void AddBlock(SceneSignal& signal, InverseFft& fft, std::ptrdiff_t first, const std::vector<double>& window,
              const SourceLevel& level) {
    fft.Run();
    const auto size = static_cast<std::ptrdiff_t>(fft.Size());
    for (std::size_t n = 0; n < fft.Size(); ++n) {
        fft.re[n] *= window[n];
        fft.im[n] *= window[n];
    }
    const auto from = std::max<std::ptrdiff_t>(0, -first);
    const auto to = std::min(size, static_cast<std::ptrdiff_t>(signal.samples) - first);
    for (auto& antenna : signal.antennas)
        AddScaled(fft.re.data() + from, fft.im.data() + from, static_cast<std::size_t>(to - from),
                  level.chainFactors[antenna.chain], antenna.re.data() + first + from,
                  antenna.im.data() + first + from);
}

}  // namespace

void AddThermalNoise(SceneSignal& signal, const std::array<double, 2>& noiseFigureDb) {
    for (auto& antenna : signal.antennas) {
        const double powerDbm =
            ThermalDbmPerMhz + 10.0 * std::log10(signal.sampleRateMhz) + noiseFigureDb[antenna.chain];
        const double sigma = AmplitudeOf(powerDbm) / std::numbers::sqrt2;  // half of the power in each component
        Random random(MixSeed({signal.captureSeed, ThermalNoiseId, antenna.chain}));
        AddNormal(random, sigma, antenna.re);
        AddNormal(random, sigma, antenna.im);
    }
}

void AddNoiseBand(SceneSignal& signal, const NoiseBand& band, const SourceLevel& level) {
    constexpr std::size_t BlockSize = 2048;
    const double binMhz = signal.sampleRateMhz / BlockSize;
    std::vector<double> sigma(BlockSize);
    bool heard = false;
    for (std::size_t k = 0; k < BlockSize; ++k) {
        const double bin = k < BlockSize / 2 ? static_cast<double>(k) : static_cast<double>(k) - BlockSize;
        sigma[k] = std::sqrt(DensityAt(band, signal.centreMhz + bin * binMhz) * binMhz / 2.0);
        heard = heard || sigma[k] > 0.0;
    }
    if (!heard) return;
    std::vector<double> window(BlockSize);
    for (std::size_t n = 0; n < BlockSize; ++n)
        window[n] = std::sin(std::numbers::pi * (static_cast<double>(n) + 0.5) / BlockSize);
    InverseFft fft(BlockSize);
    Random random(MixSeed({signal.captureSeed, level.id}));
    constexpr auto Step = static_cast<std::ptrdiff_t>(BlockSize / 2);
    for (std::ptrdiff_t first = -Step; first < static_cast<std::ptrdiff_t>(signal.samples); first += Step) {
        for (auto* part : {&fft.re, &fft.im}) {
            std::fill(part->begin(), part->end(), 0.0);
            AddNormal(random, 1.0, *part);
            for (std::size_t k = 0; k < BlockSize; ++k)
                (*part)[k] *= sigma[k];
        }
        AddBlock(signal, fft, first, window, level);
    }
}

}  // namespace quayCommand

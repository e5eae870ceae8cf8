// Tones and clock harmonics, and the arithmetic that all sources share.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Air/Scene/Random.h"
#include "Air/Scene/SceneSignal.h"

namespace quayCommand {

Complex UnitAt(double turns) {
    const double angle = 2.0 * std::numbers::pi * (turns - std::floor(turns));
    return {std::cos(angle), std::sin(angle)};
}

void AddScaled(const double* inRe, const double* inIm, std::size_t count, Complex factor, double* outRe,
               double* outIm) {
    for (std::size_t n = 0; n < count; ++n) {
        const double re = inRe[n], im = inIm[n];
        outRe[n] += re * factor.re - im * factor.im;
        outIm[n] += re * factor.im + im * factor.re;
    }
}

double AmplitudeOf(double db) {
    return std::pow(10.0, db / 20.0);
}

namespace {

/// A stretch of a line whose frequency goes up or down evenly.
struct Sweep {
    std::size_t first, last;  ///< samples from `first` up to but excluding `last`
    double turns;             ///< phase at `first`
    double frequency;         ///< at `first`, in turns a sample; beyond +-0.5 it is outside the span
    double slope;             ///< turns a sample, a sample
};

void AddSweep(SceneSignal& signal, const Sweep& sweep, double amplitude, const SourceLevel& level) {
    for (auto& antenna : signal.antennas) {
        const auto start = UnitAt(sweep.turns);
        const auto factor = level.chainFactors[antenna.chain];
        Complex value = Complex{amplitude * start.re, amplitude * start.im} * factor;
        Complex step = UnitAt(sweep.frequency + sweep.slope / 2.0);
        const Complex bend = UnitAt(sweep.slope);
        double frequency = sweep.frequency;
        double *re = antenna.re.data(), *im = antenna.im.data();
        for (std::size_t n = sweep.first; n < sweep.last; ++n) {
            if (std::fabs(frequency) < 0.5) {
                re[n] += value.re;
                im[n] += value.im;
            }
            value = value * step;
            step = step * bend;
            frequency += sweep.slope;
        }
    }
}

/// A harmonic that sweeps evenly from `top` down by `span` and up again, `rate` times a sample, all in turns a sample.
void AddSpreadHarmonic(SceneSignal& signal, double top, double span, double rate, double turns, double amplitude,
                       const SourceLevel& level) {
    const double slope = 2.0 * span * rate;
    // Position in the period, from 0 at the top over 0.5 at the bottom back to the top.
    double position = signal.startUs * signal.sampleRateMhz * rate;
    position -= std::floor(position);
    for (std::size_t n = 0; n < signal.samples;) {
        const bool falling = position < 0.5;
        const double left = ((falling ? 0.5 : 1.0) - position) / rate;
        const auto count = std::min(signal.samples - n, static_cast<std::size_t>(std::ceil(std::max(left, 1.0))));
        const double depth = falling ? 2.0 * position : 2.0 - 2.0 * position;
        const Sweep sweep{n, n + count, turns, top - span * depth, falling ? -slope : slope};
        AddSweep(signal, sweep, amplitude, level);
        const auto length = static_cast<double>(count);
        turns += sweep.frequency * length + sweep.slope * length * length / 2.0;
        turns -= std::floor(turns);
        position += length * rate;
        position -= std::floor(position);
        n += count;
    }
}

}  // namespace

void AddTone(SceneSignal& signal, const Tone& tone, const SourceLevel& level) {
    const double frequency = (tone.frequencyMhz - signal.centreMhz) / signal.sampleRateMhz;
    if (std::fabs(frequency) >= 0.5) return;
    const double turns = Random(MixSeed({signal.captureSeed, level.id})).Uniform();
    AddSweep(signal, {0, signal.samples, turns, frequency, 0.0}, AmplitudeOf(tone.levelDbm), level);
}

void AddComb(SceneSignal& signal, const Comb& comb, const SourceLevel& level) {
    const double half = signal.sampleRateMhz / 2.0;
    const double spread = comb.spreadPercent / 100.0;
    const double lowest = (signal.centreMhz - half) / comb.fundamentalMhz;
    const double highest = (signal.centreMhz + half) / (comb.fundamentalMhz * (1.0 - spread));
    Random random(MixSeed({signal.captureSeed, level.id}));
    for (auto k = static_cast<unsigned>(std::max(1.0, std::ceil(lowest))); k <= highest; ++k) {
        const double top = (k * comb.fundamentalMhz - signal.centreMhz) / signal.sampleRateMhz;
        const double amplitude = AmplitudeOf(
            comb.levelDbm - comb.rolloffDbPerDecade * std::log10(k / static_cast<double>(comb.levelHarmonic)));
        const double turns = random.Uniform();
        if (spread > 0.0) {
            const double span = spread * k * comb.fundamentalMhz / signal.sampleRateMhz;
            const double rate = comb.modulationKhz / 1000.0 / signal.sampleRateMhz;
            AddSpreadHarmonic(signal, top, span, rate, turns, amplitude, level);
        } else if (std::fabs(top) < 0.5) {
            AddSweep(signal, {0, signal.samples, turns, top, 0.0}, amplitude, level);
        }
    }
}

}  // namespace quayCommand

// One capture in the making: the complex envelope at each antenna, and the sources that add to it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Air/Scene/Scene.h"

namespace quayCommand {

struct Complex {
    double re = 0.0;
    double im = 0.0;
};

inline Complex operator*(Complex a, Complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

/// exp(j 2 pi turns)
Complex UnitAt(double turns);

/// out[n] += in[n] * factor for `count` complex values; the arrays must not overlap.
void AddScaled(const double* inRe, const double* inIm, std::size_t count, Complex factor, double* outRe, double* outIm);

/// Where a capture stands and what its antennas hear. Power is mean |x|^2 in mW: a tone of amplitude 1 is 0 dBm.
struct SceneSignal {
    struct Antenna {
        unsigned chain = 0;  ///< 0 is A, 1 is B
        std::vector<double> re;
        std::vector<double> im;
    };
    double centreMhz = 0.0;
    double sampleRateMhz = 0.0;
    double startUs = 0.0;           ///< scene time of the first sample
    std::uint64_t captureSeed = 0;  ///< differs from capture to capture
    std::uint64_t sceneSeed = 0;    ///< the same for all captures
    std::size_t samples = 0;
    std::vector<Antenna> antennas;
};

/// How strong a source is in this capture.
struct SourceLevel {
    std::uint64_t id = 0;                 ///< tells the sources' random numbers apart
    std::array<Complex, 2> chainFactors;  ///< per chain: what the level of the source's own record is multiplied by
};

/// Each adds what falls within the capture's span; what lies outside isn't folded in.
void AddTone(SceneSignal& signal, const Tone& tone, const SourceLevel& level);
void AddComb(SceneSignal& signal, const Comb& comb, const SourceLevel& level);
void AddNoiseBand(SceneSignal& signal, const NoiseBand& band, const SourceLevel& level);
void AddAccessPoint(SceneSignal& signal, const AccessPoint& accessPoint, const SourceLevel& level);

/// The receivers' own noise, independent in each chain.
void AddThermalNoise(SceneSignal& signal, const std::array<double, 2>& noiseFigureDb);

/// 10^(db / 20)
double AmplitudeOf(double db);

}  // namespace quayCommand

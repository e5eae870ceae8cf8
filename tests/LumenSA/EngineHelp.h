// What the engine's tests share.
#pragma once

#include <cmath>
#include <complex>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Exceptions.h"
#include "LumenSA.h"

using namespace LumenSpectrumAnalyzer;

/// Three chains of ADC codes; chains without data stay zero.
struct Codes {
    explicit Codes(std::size_t length) {
        for (int c = 0; c < 3; ++c) {
            i[c].resize(length);
            q[c].resize(length);
        }
    }
    void AddTo(CLmnSA& engine, unsigned chains = 1) const {
        const double* const is[] = {i[0].data(), i[1].data(), i[2].data()};
        const double* const qs[] = {q[0].data(), q[1].data(), q[2].data()};
        engine.AddSweep(is, qs, static_cast<unsigned>(i[0].size()), chains);
    }
    std::vector<double> i[3], q[3];
};

/// Adds a tone of `cycles` periods in `period` samples, rounded to whole codes.
inline void AddTone(Codes& codes, int chain, double amplitude, double cycles, double period) {
    for (std::size_t n = 0; n < codes.i[chain].size(); ++n) {
        const double angle = 2 * M_PI * std::fmod(cycles * static_cast<double>(n), period) / period;
        codes.i[chain][n] = std::round(codes.i[chain][n] + amplitude * std::cos(angle));
        codes.q[chain][n] = std::round(codes.q[chain][n] + amplitude * std::sin(angle));
    }
}

/// A tone on chain 0 that lies `bin` bins of a 128-bin spectrum above the centre.
inline Codes ToneSweep(double amplitude, int bin, std::size_t length = 128) {
    Codes codes(length);
    AddTone(codes, 0, amplitude, bin, 128);
    return codes;
}

/// Takes a sweep in and measures it.
inline void Measure(CLmnSA& engine, const Codes& codes, unsigned chains = 1) {
    codes.AddTo(engine, chains);
    engine.UpdateFromLastSweep();
}

/// Value of the bin that lies `bin` bins above the centre.
inline double At(const CLmnSA& engine, int bin) {
    return engine.m_Spectrum[0]->val[static_cast<int>(engine.m_NumOfBins / 2) + bin];
}

inline void Tune(CLmnSA& engine, double sampleRate, double rbw, int bandwidth, double centre = 5180) {
    engine.m_SampleRate = sampleRate;
    engine.m_RBW = rbw;
    engine.m_Bandwidth = bandwidth;
    engine.m_CenterFreq = centre;
    engine.m_NumOfChannels = 2;
    engine.m_ChainName = "A";
    engine.m_isInit = true;
}

inline const std::string NothingThrown = "(nothing thrown)";

/// Text of the heap-allocated exception that `action` throws.
inline std::string ThrownPointer(const std::function<void()>& action) {
    try {
        action();
    } catch (Utilities::Exception* raw) {
        return std::unique_ptr<Utilities::Exception>(raw)->what();
    }
    return NothingThrown;
}

/// Text of the exception that `action` throws by value.
inline std::string ThrownValue(const std::function<void()>& action) {
    try {
        action();
    } catch (const Utilities::Exception& error) {
        return error.what();
    }
    return NothingThrown;
}

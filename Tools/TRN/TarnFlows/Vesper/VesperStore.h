// What a test measured: every sweep's figures, and for each channel that saw its last iteration the average, the peak,
// the bins and the spurs.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "LumenSA.h"
#include "Support/ChainBuffers.h"
#include "Vesper/VesperSettings.h"

/// Ordered by channel, then by band.
struct VesperKey {
    std::int32_t channel = 0;
    std::uint32_t band = 0;
    auto operator<=>(const VesperKey&) const = default;  // NOLINT(modernize-use-nullptr): in the generated code
};

/// In-band figures of one sweep of one chain: dB on GLN platforms, linear powers elsewhere.
struct VesperSweep {
    double average = 0.0;
    double peak = 0.0;
    double peakFreq = 0.0;  ///< MHz
};

/// Over all iterations, dB.
struct VesperResult {
    double average = 0.0;
    double peak = 0.0;
};

/// A slot is a chain of a test: one in the single-chain mode, else chain A's and chain B's.
class VesperStore {
public:
    using Engine = LumenSpectrumAnalyzer::CLmnSA;
    using SpurRecord = LumenSpectrumAnalyzer::SpurRecord;
    using Bins = std::vector<double>;
    template <typename Value>
    using PerSlot = std::vector<Value>;

    std::map<VesperKey, std::vector<PerSlot<VesperSweep>>> m_vesperSweeps;  ///< one element an iteration
    std::map<VesperKey, PerSlot<VesperResult>> m_vesperResults;
    std::map<VesperKey, std::vector<SpurRecord>> m_vesperSpurs;
    std::map<VesperKey, PerSlot<Bins>> m_vesperAverage;  ///< dB; no bins in a slot that wasn't measured
    std::map<VesperKey, PerSlot<Bins>> m_vesperMaxHold;

    void Clear() { *this = {}; }

    /// Files the engine's last sweep under the current iteration; on the last one also the bins and the result.
    /// @param averages, maxHolds  the engine's bins, a buffer for each of its chains
    void StoreSweep(Engine& engine, const VesperSettings& settings, const VesperKey& key, const ChainBuffers& averages,
                    const ChainBuffers& maxHolds);

    /// Folds a slot's sweeps into its result.
    void CalculateChannelAverageAndPeak(Engine& engine, const VesperSettings& settings, const VesperKey& key,
                                        std::size_t slot);

    // Of a key without a result: 0, and the key has one from then on.
    /// @throws Common::Exception "Failed to get average. ${1} is not a valid chain."
    double ChannelAverage(const VesperSettings& settings, const VesperKey& key, const std::string& chain);
    double ChannelPeak(const VesperSettings& settings, const VesperKey& key, const std::string& chain);
    /// dB above the band's limit.
    double DesenseValue(const VesperSettings& settings, const VesperKey& key);

    /// Slots of a mode; the engine's chains for a number that is none.
    static std::size_t SlotsOf(const VesperSettings& settings, Engine& engine);

private:
    VesperResult& ResultOf(const VesperSettings& settings, const VesperKey& key, const std::string& chain,
                           const char* what);
};

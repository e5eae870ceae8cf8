#include "Vesper/VesperStore.h"

#include <algorithm>
#include <cmath>

#include "Streams/Trace.h"

namespace {

/// The engine's chain behind a slot: a sweep of one chain holds it first, whichever it is.
unsigned EngineChain(const VesperSettings& settings, std::size_t slot) {
    return settings.m_vesperChainMode == VesperBothChains ? static_cast<unsigned>(slot) : 0;
}

/// Element `at`, made when the list is shorter: settings may change while a test runs.
template <typename Value>
Value& Grown(std::vector<Value>& list, std::size_t at) {
    if (list.size() <= at) list.resize(at + 1);
    return list[at];
}

}  // namespace

std::size_t VesperStore::SlotsOf(const VesperSettings& settings, Engine& engine) {
    switch (settings.m_vesperChainMode) {
        case VesperOneChain:
            return 1;
        case VesperBothChains:
        case VesperAThenB:
            return 2;
        default:
            return static_cast<std::size_t>(engine.m_NumChains);
    }
}

void VesperStore::StoreSweep(Engine& engine, const VesperSettings& settings, const VesperKey& key,
                             const ChainBuffers& averages, const ChainBuffers& maxHolds) {
    const std::size_t slots = SlotsOf(settings, engine);
    const auto iterations = static_cast<std::size_t>(settings.m_vesperIterations);
    auto& sweeps = m_vesperSweeps[key];
    if (sweeps.size() < iterations) sweeps.resize(iterations, PerSlot<VesperSweep>(slots));

    const bool bothChains = settings.m_vesperChainMode == VesperBothChains;
    const std::size_t first = settings.m_vesperChainMode == VesperAThenB && engine.m_ChainName != "A" ? 1 : 0;
    const std::size_t count = bothChains ? std::min(slots, averages.Chains()) : 1;
    for (std::size_t slot = first; slot < first + count; ++slot) {
        const unsigned chain = EngineChain(settings, slot);
        auto& sweep = sweeps[static_cast<std::size_t>(settings.m_vesperCurrentIteration - 1)];
        Grown(sweep, slot) = {engine.GetChannelAverageVesper(chain), engine.GetChannelPeakVesper(chain),
                              engine.GetChannelPeakFreqVesper(chain)};
        if (!settings.IsLastIteration()) continue;
        CalculateChannelAverageAndPeak(engine, settings, key, slot);
        for (const auto& [store, bins] : {std::pair{&m_vesperAverage, &averages}, {&m_vesperMaxHold, &maxHolds}}) {
            auto& kept = (*store)[key];
            if (kept.size() < slots) kept.resize(slots);
            Bins& copy = Grown(kept, slot);
            copy.assign((*bins)[chain].begin(), (*bins)[chain].end());
            if (!settings.m_isGLN) engine.LinearToLog(copy.data(), static_cast<int>(chain));
        }
    }
}

void VesperStore::CalculateChannelAverageAndPeak(Engine& engine, const VesperSettings& settings, const VesperKey& key,
                                                 std::size_t slot) {
    auto& sweeps = m_vesperSweeps[key];
    const auto iterations = static_cast<std::size_t>(settings.m_vesperIterations);
    double sum = 0.0;
    double peak = Grown(Grown(sweeps, 0), slot).peak;
    for (std::size_t i = 0; i < iterations; ++i) {
        const VesperSweep& sweep = Grown(Grown(sweeps, i), slot);
        sum += sweep.average;
        peak = std::max(peak, sweep.peak);
    }
    double average = sum / static_cast<double>(iterations);
    if (!settings.m_isGLN) {
        const double gain = engine.GetManualGain(EngineChain(settings, slot));
        peak = 10.0 * std::log10(peak) - gain;
        average = 10.0 * std::log10(average) - gain;
    }
    auto& results = m_vesperResults[key];
    results.resize(std::max(results.size(), SlotsOf(settings, engine)));
    Grown(results, slot) = {average, peak};
}

VesperResult& VesperStore::ResultOf(const VesperSettings& settings, const VesperKey& key, const std::string& chain,
                                    const char* what) {
    if (chain != "A" && chain != "B")
        Streams::ThrowLogged("VesperStore::ResultOf",
                             Common::Format("Failed to get ${1}. ${2} is not a valid chain.") % what % chain);
    const bool isSecond = chain == "B" && settings.m_vesperChainMode != VesperOneChain;
    return Grown(m_vesperResults[key], isSecond ? 1 : 0);
}

double VesperStore::ChannelAverage(const VesperSettings& settings, const VesperKey& key, const std::string& chain) {
    return ResultOf(settings, key, chain, "average").average;
}

double VesperStore::ChannelPeak(const VesperSettings& settings, const VesperKey& key, const std::string& chain) {
    return ResultOf(settings, key, chain, "peak").peak;
}

double VesperStore::DesenseValue(const VesperSettings& settings, const VesperKey& key) {
    const double limit = key.band < settings.m_vesperLimit.size() ? settings.m_vesperLimit[key.band] : 0.0;
    auto& slots = m_vesperResults[key];
    const double a = Grown(slots, 0).average;
    if (settings.m_vesperChainMode == VesperOneChain) return a - limit;
    const double b = Grown(slots, 1).average;
    return (settings.m_isGLN ? (a + b) * 0.5 : std::max(a, b)) - limit;
}

// What a burn-in desense test is made of.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Chain modes of a test.
enum VesperChainMode : std::int32_t {
    VesperOneChain = 0,    ///< the selected one
    VesperBothChains = 1,  ///< both in one sweep
    VesperAThenB = 2,      ///< each channel with chain A, then with chain B
};

struct VesperSettings {
    std::int32_t m_vesperIterations = 25;       ///< sweeps of each channel and chain, 1 to 100
    std::int32_t m_vesperCurrentIteration = 1;  ///< 1 to `m_vesperIterations`
    std::int32_t m_vesperChainMode = VesperAThenB;
    bool m_burnInDisabled = false;                  ///< the workload is neither started nor stopped
    std::int32_t m_vesperDelay = 0;                 ///< seconds before a test starts, 0 to 100
    std::int32_t m_burnInInitWait = InitWait_ms();  ///< that the workload is given to come up
    std::int32_t m_vesperFirstIteration = 1;
    std::string m_vesperBandwidth = "20";  ///< of the plain variant's own loop
    std::string m_bitcfgFile = "Workload.bitcfg";
    std::array<double, 3> m_vesperLimit{-121.0, -122.0, -122.0};  ///< dBm a bin, by band
    bool m_isGLN = true;                                          ///< sweep values are dB; else they are linear powers

    /// 15 s, or what TARN_WORKLOAD_WAIT says: whole seconds, 0 to 600.
    static std::int32_t InitWait_ms();
    bool IsLastIteration() const { return m_vesperCurrentIteration == m_vesperIterations; }
    /// "AB" and "A->B"; empty for a single chain, whose text is the selection's.
    const char* ChainModeText() const;
    /// The mode of a text, "A" or "B", "AB", "A->B"; nothing for any other.
    static std::optional<std::int32_t> FindChainMode(std::string_view text);
};

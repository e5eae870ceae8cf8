// Engine variant of the Rowan chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnRowan : public CLmnSA {
public:
    /// @param boardSKU  which front-end the board has: 0, 1 or 2
    explicit CLmnRowan(std::uint32_t boardSKU) : m_BoardSKU(boardSKU) {}

    double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                const std::string& chain) override;
    /// Up to 140.
    bool Is5GHzLowChannel(double channel) override;
    /// Up to 69.
    bool Is6GHzLowChannel(double channel) override;

    std::uint32_t m_BoardSKU;
};

}  // namespace LumenSpectrumAnalyzer

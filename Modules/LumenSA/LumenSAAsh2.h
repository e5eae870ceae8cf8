// Engine variant of the Ash 2 chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnAsh2 : public CLmnSA {
public:
    /// @param boardSKU  which front-end the board has: 0, 1 or 2
    explicit CLmnAsh2(std::uint32_t boardSKU) : m_BoardSKU(boardSKU) {}

    double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                const std::string& chain) override;

    std::uint32_t m_BoardSKU;
};

}  // namespace LumenSpectrumAnalyzer

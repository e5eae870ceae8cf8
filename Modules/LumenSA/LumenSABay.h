// Engine variant of the Bay chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnBay : public CLmnSA {
public:
    /// @param boardSKU  which front-end the board has: 0, 1 or 2
    explicit CLmnBay(std::uint32_t boardSKU) : m_BoardSKU(boardSKU) {}

    double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                const std::string& chain) override;

    std::uint32_t m_BoardSKU;
};

}  // namespace LumenSpectrumAnalyzer

// Capture classes: they describe a capture to the radio, read its samples and hand them to the engine as one sweep.
// One class a chip generation, each built on the one before it.
// Thread: none of them has a lock; the caller holds the capture lock while samples are read.
#pragma once

#include <cstdint>

#include "QuayCommands.h"

namespace LumenSpectrumAnalyzer {
class CLmnSA;
}

namespace WifiAdc {

/// What every generation shares: the radio, the engine and the way of an outside sweep.
class CSampleCommon {
public:
    /// Neither object is owned; both must outlive this one.
    CSampleCommon(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA);
    virtual ~CSampleCommon();
    CSampleCommon(const CSampleCommon&) = delete;
    CSampleCommon& operator=(const CSampleCommon&) = delete;

    virtual void PrepareCapture() {}
    /// Takes over a new receiver set-up; answers the number of chains that a read captures.
    virtual std::int32_t Initiate(quayCommand::AdcConfig adcConfig, const quayCommand::RxConfig& rxConfig) = 0;
    /// Captures one sweep and feeds it to the engine. Exceptions of the radio and the engine pass.
    virtual void ReadSamples();
    /// Feeds one chain of samples that the caller holds to the engine.
    /// @param i, q          three vectors each of `numOfSamples` ADC codes; the first pair is the chain
    virtual void HandOverSamples(double** i, double** q, unsigned numOfSamples);
    /// Scales an ADC code of a source in place.
    virtual void ScaleForSource(unsigned source, double& value);
    /// Length of each sample vector.
    virtual std::uint32_t GetNumOfSamples() { return m_numOfSamples; }
    /// Chains that a source captures; throws CQuayMsgException for an unknown source.
    virtual std::int32_t NumChains(unsigned source) = 0;
    /// Vectors that a read prepares for each of I and Q.
    virtual unsigned NumOfChainBuffers() = 0;

protected:
    quayCommand::IAdcCommands* m_adc;
    LumenSpectrumAnalyzer::CLmnSA* m_lmnSA;
    std::uint32_t m_numOfSamples = 98304;
};

}  // namespace WifiAdc

// Capture of the first generation, and the read that all generations share.
#pragma once

#include <memory>
#include <vector>

#include "CSampleCommon.h"

namespace WifiAdc {

class CSampleSorrel : public CSampleCommon {
public:
    CSampleSorrel(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA);

    std::int32_t Initiate(quayCommand::AdcConfig adcConfig, const quayCommand::RxConfig& rxConfig) override;
    /// The vectors are zeroed before each read, but for those that it writes to their end. A read that reports no
    /// success still goes on to the engine, which refuses an empty sweep.
    void ReadSamples() override;
    void ScaleForSource(unsigned source, double& value) override;
    std::int32_t NumChains(unsigned source) override;
    unsigned NumOfChainBuffers() override { return 3; }

protected:
    /// Tells the radio what to capture.
    virtual void PrepareRead();
    /// Fills `m_pI` and `m_pQ`; true on success.
    virtual bool Read();
    /// Runs between the hand-over of a sweep and its analysis.
    virtual void AfterSweep() {}

    /// Fills the request's words and `m_numChains` from the set-up's source.
    void SetSource(std::uint32_t source);

    double** m_pI = nullptr;  ///< vectors of the current read; null between reads
    double** m_pQ = nullptr;
    quayCommand::AdcReadRequest m_readRequest{};
    std::int32_t m_numChains = 0;
    quayCommand::CaptureDescriptorA m_descriptorA{};
    quayCommand::CaptureDescriptorB m_descriptorB{};

private:
    struct Free {
        void operator()(void* memory) const;
    };
    /// Vectors for the next read, zeroed where it relies on that.
    void AllocateVectors();

    std::unique_ptr<void, Free> m_samples;  ///< all vectors of a read, kept from one read to the next
    std::size_t m_filledChains = 0;         ///< chains of the last read, whose vectors hold its samples
    std::vector<double*> m_iVectors;
    std::vector<double*> m_qVectors;
};

}  // namespace WifiAdc

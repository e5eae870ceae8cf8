#include "CSampleSorrel.h"

#include <algorithm>

#include "LumenSA.h"
#include "QuayExceptions.h"

namespace WifiAdc {

namespace {

/// Takes the vectors away from a capture object when a read ends, however it ends.
class VectorsInUse {
public:
    VectorsInUse(double**& i, double**& q) : m_i(i), m_q(q) {}
    ~VectorsInUse() { m_i = m_q = nullptr; }
    VectorsInUse(const VectorsInUse&) = delete;
    VectorsInUse& operator=(const VectorsInUse&) = delete;

private:
    double**& m_i;
    double**& m_q;
};

}  // namespace

CSampleSorrel::CSampleSorrel(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA)
    : CSampleCommon(adc, lmnSA) {
    m_numOfSamples = m_adc->GetCaptureLength();
}

std::int32_t CSampleSorrel::Initiate(quayCommand::AdcConfig adcConfig, const quayCommand::RxConfig& rxConfig) {
    const std::uint32_t selector = rxConfig.m_currChain;
    m_descriptorA = {1, selector, 0, 0, 0x10000, 0, 0, 0x20000, 10, 2};
    m_descriptorB = {1, selector, 0, 0x40000000, 0x40000000, 0, 0x80000000, 0x40000000, 10, 2};
    SetSource(static_cast<std::uint32_t>(adcConfig.chainMode));
    return m_numChains;
}

void CSampleSorrel::SetSource(std::uint32_t source) {
    m_readRequest[0] = 0;
    m_readRequest[2] = 2;
    m_numChains = NumChains(source);
    m_readRequest[1] = 5000;
}

void CSampleSorrel::ReadSamples() {
    if (m_numChains == 0)
        throw CQuayMsgException("The capture was not set up", "WifiAdc::CSampleSorrel::ReadSamples", __FILE__,
                                __LINE__);
    PrepareRead();
    AllocateVectors();
    m_pI = m_iVectors.data();
    m_pQ = m_qVectors.data();
    const VectorsInUse inUse(m_pI, m_pQ);
    Read();
    m_lmnSA->AddSweep(m_pI, m_pQ, m_numOfSamples, static_cast<unsigned>(m_numChains));
    AfterSweep();
    m_lmnSA->UpdateFromLastSweep();
}

void CSampleSorrel::AllocateVectors() {
    const std::size_t length = m_numOfSamples;
    const std::size_t buffers = NumOfChainBuffers();
    if (m_iVectors.empty()) {
        m_samples.resize(2 * buffers * length);
        m_iVectors.resize(buffers);
        m_qVectors.resize(buffers);
        for (std::size_t chain = 0; chain < buffers; ++chain) {
            m_iVectors[chain] = m_samples.data() + 2 * chain * length;
            m_qVectors[chain] = m_samples.data() + (2 * chain + 1) * length;
        }
    }
    // A read fills the vectors of its chains alone, which come first: the others still are as they were made.
    std::fill_n(m_samples.begin(), 2 * m_filledChains * length, 0.0);
    m_filledChains = static_cast<std::size_t>(m_numChains);
}

void CSampleSorrel::PrepareRead() {
    quayCommand::CaptureState state{};
    m_adc->GetCaptureState(state);
    const auto low = static_cast<std::uint32_t>(state[1]);
    if (low == 0 || low == 10)
        m_adc->SetCaptureDescriptorA(m_descriptorA);
    else
        m_adc->SetCaptureDescriptorB(m_descriptorB);
}

bool CSampleSorrel::Read() {
    return m_adc->ReadCapture(m_readRequest, m_pI, m_pQ);
}

void CSampleSorrel::ScaleForSource(unsigned source, double& value) {
    value *= source == 1 ? 4.0 : source == 2 ? 8.0 : 2.0;
}

std::int32_t CSampleSorrel::NumChains(unsigned source) {
    switch (source) {
        case 0:
        case 1:
        case 2:
            return 1;
        case 3:
            return 2;
        case 4:
            return 3;
        default:
            throw CQuayMsgException("CSampleSorrel::NumChains received illegal source value.",
                                    "WifiAdc::CSampleSorrel::NumChains", "Tools/TRN/WifiAdcSampling/CsampleSorrel", 50);
    }
}

}  // namespace WifiAdc

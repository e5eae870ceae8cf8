#include "CSampleSorrel.h"

#include <algorithm>
#include <cstdlib>
#include <new>

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

void CSampleSorrel::Free::operator()(void* memory) const {
    std::free(memory);
}

void CSampleSorrel::AllocateVectors() {
    const std::size_t length = m_numOfSamples;
    const std::size_t buffers = NumOfChainBuffers();
    if (!m_samples) {
        constexpr std::size_t LineDoubles = 8;
        const std::size_t stride = (length + LineDoubles - 1) / LineDoubles * LineDoubles;
        std::size_t room = (2 * buffers * stride + LineDoubles) * sizeof(double);
        // Fresh from the system, zeros that nobody wrote take no memory: the vectors of unused chains stay so.
        m_samples.reset(std::calloc(room, 1));
        if (!m_samples) throw std::bad_alloc();
        void* start = m_samples.get();
        std::align(LineDoubles * sizeof(double), 2 * buffers * stride * sizeof(double), start, room);
        m_iVectors.resize(buffers);
        m_qVectors.resize(buffers);
        for (std::size_t chain = 0; chain < buffers; ++chain) {
            m_iVectors[chain] = static_cast<double*>(start) + 2 * chain * stride;
            m_qVectors[chain] = m_iVectors[chain] + stride;
        }
    }
    // A read fills the vectors of its chains alone, which come first: the others still are as they were made.
    const std::size_t whole = m_adc->ChainsReadWhole();
    for (std::size_t chain = whole; chain < m_filledChains; ++chain) {
        std::fill_n(m_iVectors[chain], length, 0.0);
        std::fill_n(m_qVectors[chain], length, 0.0);
    }
    m_filledChains = std::max(whole, static_cast<std::size_t>(m_numChains));
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

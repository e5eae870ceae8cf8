#include "LumenSA.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "Exceptions.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// Largest transform that the fused sweep primitive takes.
constexpr std::uint32_t MaxBins = 1u << 22;

/// Number of bins of the settings, or 0 when they give no power of two of at least two bins.
std::uint32_t UsableBins(double sampleRate, double rbw) {
    const double bins = sampleRate / rbw * 1000.0;
    if (!(bins >= 2.0 && bins < MaxBins + 1.0)) return 0;  // catches a not-a-number too
    const auto whole = static_cast<std::uint32_t>(bins);
    return (whole & (whole - 1)) == 0 ? whole : 0;
}

}  // namespace

void ThrowNew(const char* function, const std::string& text) {
    if (Streams::IsTraceOn(Streams::TraceError)) Streams::WriteTrace(Streams::TraceError, __FILE__, function, text);
    throw new Utilities::Exception(text);
}

void ThrowValue(const char* function, const std::string& text) {
    if (Streams::IsTraceOn(Streams::TraceError)) Streams::WriteTrace(Streams::TraceError, __FILE__, function, text);
    throw Utilities::Exception(text);
}

void CheckStatus(KelpStatus status, const char* function, const char* logText) {
    if (status == kelpStsNoErr) return;
    if (Streams::IsTraceOn(Streams::TraceError)) Streams::WriteTrace(Streams::TraceError, __FILE__, function, logText);
    throw new Utilities::Exception(Common::Format("Kelp Error ${1}\n ${2}") % status % kelpGetStatusString(status));
}

void CheckChain(unsigned chain, const char* function) {
    if (chain >= CLmnSA::MaxChains) ThrowValue(function, Common::Format("Chain number ${1} is invalid") % chain);
}

int WholeWithin(double value, int most) {
    if (!(value > 0.0)) return 0;
    return value >= most ? most : static_cast<int>(value);
}

void ChannelBuffers::Make(std::size_t channels, std::size_t bins, Contents contents) {
    values.Fit(channels * bins, contents);
    views.assign(channels, ValBuffer{});
    pointers.assign(channels, nullptr);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        views[channel].val = values.Data() + channel * bins;
        pointers[channel] = &views[channel];
    }
}

void ChannelBuffers::Drop() {
    views.clear();
    pointers.clear();
}

void ChannelBuffers::Release() {
    Drop();
    values.Release();
}

CLmnSA::CLmnSA() : m_buffers(std::make_unique<Buffers>()) {
    TRACE_SCOPE("CLmnSA::CLmnSA");
    if (kelpInit() < 0) {
        TRACE(Streams::TraceError, "KELP could not be started");
        throw new Utilities::Exception("*** KELP could not be started ***");
    }
    m_pThreadSync = &m_buffers->threadSync;
    InitProps();
    for (int c = 0; c < MaxChains; ++c) {
        ChainBuffers& own = m_buffers->chains[c];
        m_CurrSweep[c] = &own.currSweep.view;
        m_ISweep[c] = &own.iSweep.view;
        m_QSweep[c] = &own.qSweep.view;
        m_Spectrum[c] = &own.spectrum.view;
        m_Histogram[c] = &own.histogram.view;
        m_HistogramI[c] = &own.histogramI.view;
        m_HistogramQ[c] = &own.histogramQ.view;
        m_HistogramRange[c] = &own.histogramRange;
        m_Average[c] = &own.average.view;
        m_ChannelPowerAverage[c] = &own.channelPowerAverage.view;
        own.iq.Fit(1);
        m_Chain[c] = own.iq.Data();
    }
}

CLmnSA::~CLmnSA() {
    TRACE_SCOPE("CLmnSA::~CLmnSA");
    try {
        CLmnSA::Realloc(0);
    } catch (const std::exception&) {
        TRACE(Streams::TraceError, "Failed to Realloc");
    }
}

void CLmnSA::InitProps() {
    TRACE_SCOPE("CLmnSA::InitProps");
    for (const LmnSAProperty property : {LmnSAProperty::MaxHold, LmnSAProperty::Histogram, LmnSAProperty::Average,
                                         LmnSAProperty::FreqCompensation, LmnSAProperty::PowerDeembedding})
        CLmnSA::SetProperty(property, false);
}

bool CLmnSA::GetProperty(LmnSAProperty property) {
    TRACE_SCOPE("CLmnSA::GetProperty");
    const auto found = m_Properties.find(property);
    if (found == m_Properties.end()) {
        TRACE(Streams::TraceError, "Illegal property value");
        throw new Utilities::Exception("Illegal property value.");
    }
    return found->second;
}

void CLmnSA::SetProperty(LmnSAProperty property, bool value) {
    TRACE_SCOPE("CLmnSA::SetProperty");
    if (property < LmnSAProperty::MaxHold || property > LmnSAProperty::PowerDeembedding) {
        TRACE(Streams::TraceError, "Illegal property value");
        throw new Utilities::Exception("Illegal property value.");
    }
    m_Properties[property] = value;
}

int CLmnSA::NumOfRxChains() {
    TRACE_SCOPE("CLmnSA::NumOfRxChains");
    return MaxChains;
}

unsigned CLmnSA::GetNumOfBins() {
    TRACE_SCOPE("CLmnSA::GetNumOfBins");
    return m_NumOfBins;
}

void CLmnSA::PrepareBuffers() {
    TRACE_SCOPE("CLmnSA::PrepareBuffers");
    Realloc(m_NumChains);
}

/// The smallest k with 2^k not below n.
int CLmnSA::Power2(unsigned n) {
    TRACE_SCOPE("CLmnSA::Power2");
    const auto value = static_cast<Kelp32s>(n);
    if (value <= 0) {
        TRACE(Streams::TraceError, "Argument must be positive");
        return 0;
    }
    const Kelp32s below = value - 1;
    int order = 0;
    const KelpStatus status = kelpsMaxOrder_32s(&below, 1, &order);
    if (status != kelpStsNoErr) {
        TRACE(Streams::TraceError, Common::Format("KELP error ${1}") % status);
        TRACE(Streams::TraceError, kelpGetStatusString(status));
        return 0;
    }
    return order;
}

bool CLmnSA::Realloc(int nChains) {
    TRACE_SCOPE("CLmnSA::Realloc");
    const SyncObjectsOSAL::Entered lock(*m_pThreadSync);
    DropBuffers();
    if (nChains == 0) {
        ReleaseBuffers();
        TRACE(Streams::TraceDebug, "No chains were specified. Calling LeaveCriticalSection(m_pThreadSync)");
        return false;
    }
    m_NumOfBins = UsableBins(m_SampleRate, m_RBW);
    m_NumOfSubBuffers = m_NumOfBins ? m_NumOfSamples / m_NumOfBins : 0;
    try {
        if (nChains < 0 || nChains > NumOfRxChains() || nChains > MaxChains) {
            TRACE(Streams::TraceError, Common::Format("${1} chains are not supported") % nChains);
        } else if (m_NumOfBins == 0) {
            TRACE(Streams::TraceError,
                  Common::Format("Sample rate ${1} MHz and RBW ${2} kHz give no number of bins that "
                                 "is a power of two") %
                      m_SampleRate % m_RBW);
        } else {
            AllocateBuffers(nChains);
            if (PrepareTransform()) return true;
        }
        TRACE(Streams::TraceError, "Heap memory allocation failed.");
    } catch (const std::bad_alloc& error) {
        ReleaseBuffers();  // before the log lines, which need memory
        TRACE(Streams::TraceError, "Heap memory allocation failed.");
        TRACE(Streams::TraceError, Common::Format("Error: ${1}") % error.what());
    } catch (const std::exception& error) {
        ReleaseBuffers();
        TRACE(Streams::TraceError, "KELP error occured");
        TRACE(Streams::TraceError, "Heap memory allocation failed.");
        TRACE(Streams::TraceError, Common::Format("Error: ${1}") % error.what());
    }
    ReleaseBuffers();
    return false;
}

/// Takes all views away; the storage stays for the buffers to come.
void CLmnSA::DropBuffers() {
    Buffers& own = *m_buffers;
    own.chainCount = 0;
    own.bins = 0;
    own.samples = 0;
    m_LastNumOfChannels = 0;
    for (int c = 0; c < MaxChains; ++c) {
        ChainBuffers& chain = own.chains[c];
        for (OwnedView* view : chain.Views())
            view->Drop();
        chain.maxHold.Drop();
        chain.channelPowerMaxHold.Drop();
        chain.spectrumIsLinear = false;
        m_MaxHold[c] = nullptr;
        m_ChannelPowerMaxHold[c] = nullptr;
    }
    m_pFFTSpec = nullptr;
    m_pFFTSpecBuffer = nullptr;
    m_pSpec = nullptr;
    m_pTmpCplxFFT = nullptr;
    m_pTmp1 = m_pSubBufferTmp = m_pAuxSweepBuffer = m_pAuxBinsBuffer = nullptr;
}

void CLmnSA::ReleaseBuffers() {
    DropBuffers();
    Buffers& own = *m_buffers;
    for (ChainBuffers& chain : own.chains) {
        for (OwnedView* view : chain.Views())
            view->Release();
        chain.maxHold.Release();
        chain.channelPowerMaxHold.Release();
    }
    own.work.Release();
    own.spec.Release();
    own.transform = nullptr;
    own.cplxFft.Release();
    for (AlignedBuffer<double>* scratch : {&own.tmp1, &own.subBuffer, &own.auxSweep, &own.auxBins})
        scratch->Release();
}

void CLmnSA::AllocateBuffers(int nChains) {
    Buffers& own = *m_buffers;
    const auto channels = static_cast<std::size_t>(std::max(m_NumOfChannels, 0));
    const std::size_t bins = m_NumOfBins;
    for (int c = 0; c < nChains; ++c) {
        ChainBuffers& chain = own.chains[c];
        chain.currSweep.Make(std::size_t{2} * m_NumOfSamples, own.fresh);
        chain.iSweep.Make(m_NumOfSamples, own.fresh);
        chain.qSweep.Make(m_NumOfSamples, own.fresh);
        chain.maxHold.Make(channels, bins, own.fresh);
        chain.channelPowerMaxHold.Make(channels, bins, own.fresh);
        m_MaxHold[c] = chain.maxHold.pointers.data();
        m_ChannelPowerMaxHold[c] = chain.channelPowerMaxHold.pointers.data();
        for (OwnedView* histogram : {&chain.histogram, &chain.histogramI, &chain.histogramQ})
            histogram->Make(HistogramBuckets);
        chain.spectrum.Make(bins);
        chain.average.Make(bins, own.fresh);
        chain.channelPowerAverage.Make(bins, own.fresh);
    }
    own.cplxFft.Fit(bins);
    own.tmp1.Fit(m_SweepLen, own.fresh);
    own.subBuffer.Fit(bins);
    own.auxSweep.Fit(m_NumOfSamples, own.fresh);
    own.auxBins.Fit(bins);
    m_pTmpCplxFFT = own.cplxFft.Data();
    m_pTmp1 = own.tmp1.Data();
    m_pSubBufferTmp = own.subBuffer.Data();
    m_pAuxSweepBuffer = own.auxSweep.Data();
    m_pAuxBinsBuffer = own.auxBins.Data();
    m_LastNumOfChannels = static_cast<std::int32_t>(channels);
    own.chainCount = nChains;
    own.bins = m_NumOfBins;
    own.samples = m_NumOfSamples;
}

/// Sets up the forward transform that divides by its length (flag 1), unless the one at hand is the same. The work
/// buffer serves for the set-up as well.
bool CLmnSA::PrepareTransform() {
    static constexpr const char* traceFunctionName = "CLmnSA::Realloc";  // a step of it
    static constexpr int DivideForward = 1;
    const int order = Power2(m_NumOfBins);
    std::int32_t specSize = 0;
    std::int32_t initSize = 0;
    std::int32_t workSize = 0;
    if (kelpsFFTGetSize_C_64fc(order, DivideForward, 0, &specSize, &initSize, &workSize) != kelpStsNoErr) {
        TRACE(Streams::TraceError, "KELP error occured");
        return false;
    }
    Buffers& own = *m_buffers;
    m_pSpec = own.spec.Fit(specSize);
    m_pFFTSpecBuffer = own.work.Fit(workSize);
    if (!m_pSpec || !m_pFFTSpecBuffer) {
        TRACE(Streams::TraceError, "KELP memory allocation failed");
        return false;
    }
    const bool same = own.transform && own.transformOrder == order &&
                      std::string_view(kelpsFFTKernelName(own.transform)) == kelpKernelName();
    if (!same &&
        kelpsFFTInit_C_64fc(&own.transform, order, DivideForward, 0, m_pSpec, m_pFFTSpecBuffer) != kelpStsNoErr) {
        TRACE(Streams::TraceError, "KELP error occured");
        return false;
    }
    own.transformOrder = order;
    m_pFFTSpec = own.transform;
    return true;
}

/// True when the buffers exist and are as large as the tuning fields say that they are.
bool CLmnSA::BuffersFit() {
    return m_buffers->bins != 0 && m_buffers->bins == m_NumOfBins && m_NumChains <= m_buffers->chainCount;
}

void CLmnSA::RequireBuffers() {
    static constexpr const char* function = "CLmnSA::RequireBuffers";
    if (m_buffers->chainCount == 0 || m_NumChains <= 0) ThrowValue(function, "No sweep has been taken yet");
    if (!BuffersFit()) ThrowValue(function, "The engine's buffers don't fit its settings");
}

void CLmnSA::RequireSamples() {
    RequireBuffers();
    if (m_NumOfSamples > m_buffers->samples)
        ThrowValue("CLmnSA::RequireSamples", "The engine holds fewer samples than its settings say");
}

/// The buffer of the current channel among a chain's per-channel buffers. @throws when the channel has none
double* CLmnSA::ChannelBuffer(const std::array<ValBuffer**, MaxChains>& buffers, int chain) {
    if (m_ChannelIndex >= static_cast<std::uint32_t>(m_LastNumOfChannels) || !buffers[chain])
        ThrowValue("CLmnSA::ChannelBuffer",
                   Common::Format("Channel index ${1} has no max hold buffer: there are ${2}") % m_ChannelIndex %
                       m_LastNumOfChannels);
    return buffers[chain][m_ChannelIndex]->val;
}

double CLmnSA::FamilyGain(const char* function, ChipFamily family, unsigned preLNAGain, unsigned internalGain,
                          unsigned band, const std::string& chain, unsigned boardSku) {
    const double gain = ManualGain(family, preLNAGain, internalGain, band, chain, m_Channel, boardSku);
    if (Streams::IsTraceOn()) {
        Streams::WriteTrace(Streams::TraceDebug, __FILE__, function,
                            Common::Format("preLNAGain = ${1}, internalGain = ${2}, band = ${3}, chain = ${4}") %
                                preLNAGain % internalGain % band % chain);
        Streams::WriteTrace(Streams::TraceDebug, __FILE__, function,
                            Common::Format("Returning manual gain factor = ${1}") % gain);
    }
    return gain;
}

}  // namespace LumenSpectrumAnalyzer

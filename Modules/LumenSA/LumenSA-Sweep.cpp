// Intake of a sweep: from vectors of ADC codes to 16-bit samples without padding and DC, and to doubles.
#include <algorithm>
#include <limits>

#include "Exceptions.h"
#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// Zero records that follow the samples in m_Chain.
constexpr unsigned TrailingRecords = 10;
constexpr unsigned MaxSamples = std::numeric_limits<std::int32_t>::max() / 2 - TrailingRecords;

static_assert(sizeof(IQBuffer) == 2 * sizeof(Kelp16s));

Kelp16s* Pairs(IQBuffer* samples) {
    return &samples->I;
}

}  // namespace

void CLmnSA::AddSweep(const double* const* i, const double* const* q, unsigned numOfSamples, unsigned nNumChains) {
    TRACE_SCOPE("CLmnSA::AddSweep");
    if (nNumChains > MaxChains) ThrowNew(traceFunctionName, Common::Format("${1} chains are too many") % nNumChains);
    if (numOfSamples > MaxSamples)
        ThrowNew(traceFunctionName, Common::Format("${1} samples are too many") % numOfSamples);
    const int chains = static_cast<int>(nNumChains);
    TakeSamples(i, q, numOfSamples, chains);
    if (m_NumChains != chains || m_isInit || (chains > 0 && !BuffersFit()))
        RebuildBuffers(chains);
    else if (m_NumOfSamples > m_buffers->samples)
        GrowSweepBuffers(numOfSamples);
    if (chains == 0) return;
    m_NumOfSubBuffers = m_NumOfSamples / m_NumOfBins;
    for (int c = 0; c < chains; ++c)
        CheckStatus(kelpsFanOut_16s64f(Pairs(m_Chain[c]), reinterpret_cast<Kelp64fc*>(m_CurrSweep[c]->val),
                                       m_ISweep[c]->val, m_QSweep[c]->val, static_cast<int>(m_NumOfSamples)),
                    traceFunctionName);
}

/// Fills m_Chain. When that fails, the lengths stay those of the sweep before, whose samples and results are all there.
void CLmnSA::TakeSamples(const double* const* i, const double* const* q, unsigned numOfSamples, int chains) {
    const std::uint32_t lastSweepLen = m_SweepLen;
    const std::uint32_t lastNumOfSamples = m_NumOfSamples;
    try {
        m_SweepLen = 1u << Power2(numOfSamples);
        m_NumOfSamples = numOfSamples;
        ConvertSamples(i, q, numOfSamples);
        for (int c = 0; c < chains; ++c)
            ReduceDC(static_cast<int>(numOfSamples), c);
    } catch (...) {
        m_SweepLen = lastSweepLen;
        m_NumOfSamples = lastNumOfSamples;
        throw;
    }
}

/// Fills m_Chain of all chains with the low 16 bits of the whole codes and with zeros behind. The storage of the sweep
/// before is used again while it is large enough.
void CLmnSA::ConvertSamples(const double* const* i, const double* const* q, unsigned numOfSamples) {
    TRACE_SCOPE("CLmnSA::ConvertSamples");
    const auto complete = [](const double* const* parts) { return parts && parts[0] && parts[1] && parts[2]; };
    if (numOfSamples > 0 && (!complete(i) || !complete(q))) ThrowNew(traceFunctionName, "A chain has no samples");
    for (int c = 0; c < MaxChains; ++c) {
        AlignedBuffer<IQBuffer>& records = m_buffers->chains[c].iq;
        if (records.Capacity() < numOfSamples + TrailingRecords) records.Fit(numOfSamples + TrailingRecords);
        m_Chain[c] = records.Data();
        if (numOfSamples)
            CheckStatus(kelpsTruncInterleave_64f16s(i[c], q[c], Pairs(m_Chain[c]), static_cast<int>(numOfSamples)),
                        traceFunctionName);
        std::fill_n(m_Chain[c] + numOfSamples, TrailingRecords, IQBuffer{0, 0});
    }
}

/// Sets m_NumOfSamples to the chain's length without the zero padding, and subtracts the whole part of the means.
void CLmnSA::ReduceDC(int numOfSamples, int chain) {
    TRACE_SCOPE("CLmnSA::ReduceDC");
    Kelp16s* const pairs = Pairs(m_Chain[chain]);
    int last = -1;
    if (numOfSamples > 0) CheckStatus(kelpsLastNonZeroPair_16s(pairs, numOfSamples, &last), traceFunctionName);
    if (last < 0) {
        TRACE(Streams::TraceError, "Received empty ADC Samples");
        throw new Utilities::Exception("Received empty ADC Samples.");
    }
    const int length = last + 1;
    m_NumOfSamples = static_cast<std::uint32_t>(length);
    double sumI = 0;
    double sumQ = 0;
    CheckStatus(kelpsSumPairs_16s64f(pairs, length, &sumI, &sumQ), traceFunctionName);
    CheckStatus(
        kelpsSubCPairs_16s_I(static_cast<Kelp16s>(sumI / length), static_cast<Kelp16s>(sumQ / length), pairs, length),
        traceFunctionName);
}

void CLmnSA::RebuildBuffers(int nChains) {
    static constexpr const char* traceFunctionName = "CLmnSA::AddSweep";  // a step of it
    m_NumChains = nChains;
    m_isInit = true;
    m_buffers->fresh = Contents::Unset;
    const bool made = Realloc(nChains);
    m_buffers->fresh = Contents::Zeros;
    if (!made && nChains > 0)
        ThrowNew(traceFunctionName,
                 Common::Format("No buffers could be made for ${1} chains at sample rate ${2} MHz and RBW ${3} kHz") %
                     nChains % m_SampleRate % m_RBW);
    MaxHoldClear();
    AverageClear();
    m_isInit = false;
}

/// Makes the sweep buffers `room` samples long. Spectra, max hold and average stay.
void CLmnSA::GrowSweepBuffers(unsigned room) {
    static constexpr const char* traceFunctionName = "CLmnSA::AddSweep";  // a step of it
    Buffers& own = *m_buffers;
    try {
        for (int c = 0; c < own.chainCount; ++c) {
            own.chains[c].currSweep.Make(std::size_t{2} * room, Contents::Unset);
            own.chains[c].iSweep.Make(room, Contents::Unset);
            own.chains[c].qSweep.Make(room, Contents::Unset);
        }
        own.tmp1.Fit(m_SweepLen);
        own.auxSweep.Fit(room);
    } catch (const std::bad_alloc&) {
        m_isInit = true;
        ReleaseBuffers();
        ThrowNew(traceFunctionName, Common::Format("No buffers could be made for ${1} samples") % room);
    }
    m_pTmp1 = own.tmp1.Data();
    m_pAuxSweepBuffer = own.auxSweep.Data();
    own.samples = room;
}

void CLmnSA::CreateAdcSweep() {
    TRACE_SCOPE("CLmnSA::CreateAdcSweep");
}

}  // namespace LumenSpectrumAnalyzer

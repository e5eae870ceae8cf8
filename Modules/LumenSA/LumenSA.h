// The spectrum engine: takes one sweep of raw ADC samples at a time and keeps, for each receive chain, a spectrum in dB
// with max hold, average, histogram, channel power, peaks and spur candidates beside it.
//
// Units: frequencies, bandwidth and sample rate in MHz, m_RBW in kHz, ADC codes for samples, dB for powers (dB relative
// to one ADC code squared, minus m_Gain). A spectrum holds m_NumOfBins values, lowest frequency first: bin k lies at
// m_CenterFreq + (k - m_NumOfBins / 2) * m_RBW / 1000. The two m_ChannelPower... buffers hold linear power, DC first.
//
// Thread: none of its own. The caller keeps calls on one engine apart; m_pThreadSync guards Realloc alone.
//
// Errors: a failing vector primitive, an empty chain, a sweep that can't be taken or transformed, and an illegal
// property throw a heap-allocated Utilities::Exception (a pointer, which the catcher deletes). Every other error is a
// Utilities::Exception by value. No operation reads or writes past a buffer: an operation that needs buffers which
// aren't there, or which don't fit the tuning fields, throws.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "GainModel.h"
#include "OSAL/Locks.h"

struct KelpsFFTSpec_C_64fc;

namespace LumenSpectrumAnalyzer {

/// Switches of the computation.
enum class LmnSAProperty : std::int32_t {
    MaxHold = 0,           ///< keep m_MaxHold, and take channel power from the max hold
    Histogram = 1,         ///< compute the histograms
    Average = 2,           ///< keep m_Average, and take channel power from the average
    FreqCompensation = 3,  ///< apply the frequency compensation curve
    PowerDeembedding = 4,  ///< remove the noise floor from channel power
};

/// The buffer that DumpEnergy writes.
enum class LmnSAExportType : std::int32_t { Spectrum = 0, MaxHold = 1 };

/// A view of one buffer that the engine owns; null while there is none. Valid until the next Realloc or AddSweep.
struct ValBuffer {
    double* val = nullptr;
};

/// One complex ADC sample.
struct IQBuffer {
    std::int16_t I;
    std::int16_t Q;
};

/// One bin of a spectrum as a candidate for, or the outcome of, the spur check.
struct SpurRecord {
    double channel = 0;           ///< channel number
    std::int32_t reserved = 0;    ///< always 0
    double frequency = 0;         ///< MHz
    std::string chain;            ///< "A" or "B"
    double power = 0;             ///< dB
    double neighbourAverage = 0;  ///< mean power of the bins around it, dB; set by CheckSpurs
};

using PeakList = std::list<std::pair<double, double>>;  ///< (frequency in MHz, power) pairs

/// The engine. Chips without a gain table of their own use this class itself; the others use one of its seven variants.
class CLmnSA {
public:
    static constexpr int MaxChains = 3;
    static constexpr int HistogramBuckets = 20;

    /// @throws Utilities::Exception* when the vector primitives can't run on this machine
    CLmnSA();
    CLmnSA(const CLmnSA&) = delete;
    CLmnSA& operator=(const CLmnSA&) = delete;

    virtual ~CLmnSA();

    /// Takes one sweep: truncates to 16 bits, cuts the zero padding at the end, removes each chain's DC offset and,
    /// when the settings or the number of chains changed, rebuilds all buffers with empty max hold and average. A sweep
    /// that is merely longer than the ones before grows the sweep buffers and keeps max hold and average.
    /// @param i, q          three vectors of `numOfSamples` ADC codes each, zero where a chain has no data
    /// @param nNumChains    how many chains carry data
    /// After an exception the spectrum buffers still hold the last good sweep's results, unless a rebuild failed: then
    /// m_isInit stays true and there are no buffers.
    virtual void AddSweep(const double* const* i, const double* const* q, unsigned numOfSamples, unsigned nNumChains);
    /// Computes the spectrum of the last sweep and everything that depends on it. Allocates nothing. A sweep shorter
    /// than one transform is refused.
    virtual void UpdateFromLastSweep();
    virtual bool GetProperty(LmnSAProperty property);
    virtual void SetProperty(LmnSAProperty property, bool value);
    /// Fills the max hold of all channels with the lowest finite double.
    virtual void MaxHoldClear();
    virtual int NumOfRxChains();
    /// Works out m_Gain from the radio's gain settings and the family's formula.
    virtual void SetManualGain(unsigned preLNAGain, unsigned internalGain, unsigned band);
    /// One gain in dB for chains 0 and 1.
    virtual void SetFileGain(double gain);
    virtual double GetManualGain(unsigned chain);
    virtual void AverageClear();

    // Copies for the caller, chains 0 to m_NumChains - 1. They throw before the first sweep.
    /// @param out  one buffer of GetNumOfBins() doubles for each chain
    virtual void UpdateSpectrum(double** out);
    /// @param hist, histI, histQ  one buffer of 20 counts for each chain
    /// @param range               (minimum, maximum) for each chain
    virtual void UpdateHistogram(double** hist, double** histI, double** histQ, std::pair<double, double>* range);
    /// The max hold of the current channel.
    virtual void UpdateMaxHold(double** out);
    /// @param i, q  one buffer of m_NumOfSamples doubles for each chain
    virtual void UpdateIQ(double** i, double** q);
    /// Appends each chain's peaks to the caller's lists; nothing before the first FindMaxPoints.
    virtual void UpdatePeaksData(PeakList* out);
    virtual void UpdateChannelAverage(double** out);

    // Copies from the caller, the mirror of the ones above. They need PrepareBuffers or a sweep before.
    virtual void SaveChannelAverage(double** in);
    /// The values are dB.
    virtual void SaveSpectrum(double** in);
    virtual void SaveHistogram(double** hist, double** histI, double** histQ, const std::pair<double, double>* range);
    virtual void SaveMaxHold(double** in);

    virtual unsigned GetNumOfBins();
    /// Searches each chain's in-band max hold, average or spectrum for peaks; fills m_Peaks, strongest first.
    virtual void FindMaxPoints();
    /// Makes new zeroed buffers that fit the tuning fields, in the storage of the old ones where it suffices. Every
    /// failure is a false.
    /// @return false when there are no chains, the settings give no power of two of at least two bins, or memory ran
    ///         out. All buffers and their storage are then released, and the lock is free.
    virtual bool Realloc(int nChains);
    /// Gain in dB between antenna and ADC; `chain` is "A" or "B".
    virtual double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                        const std::string& chain);
    virtual bool Is5GHzLowChannel(double channel);
    virtual bool Is6GHzLowChannel(double channel);
    /// Does nothing.
    virtual void CreateAdcSweep();

    // Text files. A file that can't be created or written is not reported.
    /// "I,Q," of each chain for each sample, one sample a line.
    virtual void DumpIQ(const std::string& file);
    virtual void DumpSpectrum(const std::string& file);
    virtual void DumpMaxHold(const std::string& file);
    /// All values on one line, bins outer, chains inner, a comma behind each.
    virtual void DumpEnergy(const std::string& file, LmnSAExportType type);
    /// One line for each in-band bin with frequency, chain, power and settings.
    virtual void DumpSpectrumByRBW(const std::string& file);
    /// In-band bins that stand out of their neighbours.
    virtual std::list<SpurRecord> GetSpurByRBW();
    /// Appends to `spurs` each candidate above -109 dB and more than 10 dB above the mean of its neighbours.
    virtual void CheckSpurs(const std::list<SpurRecord>& candidates, std::list<SpurRecord>& spurs);
    virtual void DumpPeaks(const std::string& file);
    /// Buffers for the present settings without a sweep.
    virtual void PrepareBuffers();

    /// dB of the last sweep's channel. The three operations with an int index throw for one outside 0 to 2.
    double GetChannelPowerPerChain(int chain);
    void SetChannelPowerPerChain(int chain, double power);
    /// How many sweeps the running averages already hold.
    void SetChannelAverageCounterPerChain(int chain, unsigned count);
    // In-band figures of the burn-in test; a chain from 3 on throws.
    double GetChannelAverageVesper(unsigned chain);
    double GetChannelPeakVesper(unsigned chain);
    double GetChannelPeakFreqVesper(unsigned chain);
    void SetVesperTestInProgress(bool inProgress);
    void SetIsBRK(bool isBRK);
    void SetBandNoiseFloor(unsigned band, int noiseFloor);
    /// First and one-past-last index of the band in a spectrum, kept within 0 to `numOfBins`; both 0 for a bandwidth
    /// other than 20, 40, 80 and 160, and when the sample rate isn't positive.
    void CalculateFreqIndices(int bandwidth, double sampleRate, unsigned numOfBins, int* start, int* end);
    /// m_NumOfBins linear powers to dB, in place, with the chain's gain taken off.
    void LinearToLog(double* pCurr, int chain);
    bool Is5GHzHighChannel(double channel);
    bool Is6GHzHighChannel(double channel);

    bool m_isInit = true;                  ///< the next AddSweep rebuilds all buffers
    std::uint32_t m_SweepLen = 0;          ///< power of two not below the last sweep's padded length
    std::uint32_t m_Band = 0;              ///< 0, 1 or 2
    std::int32_t m_Bandwidth = 0;          ///< 20, 40, 80, 160 or 320
    std::int32_t m_LastNumOfChannels = 0;  ///< per-channel max hold buffers that exist now
    std::int32_t m_NumOfChannels = 0;      ///< per-channel max hold buffers that the next Realloc makes
    std::uint32_t m_ChannelIndex = 0;      ///< second index of the max hold buffers
    double m_Channel = 0;                  ///< channel number
    double m_CenterFreq = 0;
    double m_RBW = 39.0625;
    std::array<std::uint32_t, MaxChains> m_ChannelAverageCounter{};
    std::array<std::int32_t, 3> m_BandNoiseFloor{};  ///< dB for each band
    std::int32_t m_AverageSweepsVal = 0;             ///< the callers' affair
    std::uint32_t m_NumOfBins = 0;
    std::map<LmnSAProperty, bool> m_Properties;
    double m_SampleRate = 0;
    std::uint32_t m_NumOfSamples = 0;  ///< of the last sweep, without padding
    std::int32_t m_NumChains = 0;
    std::string m_ChainName;                          ///< "A", "B" or "AB"
    std::int32_t m_WindowSize = 10;                   ///< bins in one slice of the peak search
    std::array<ValBuffer*, MaxChains> m_CurrSweep{};  ///< m_NumOfSamples complex doubles
    std::array<ValBuffer*, MaxChains> m_ISweep{};     ///< m_NumOfSamples doubles
    std::array<ValBuffer*, MaxChains> m_QSweep{};
    std::array<ValBuffer*, MaxChains> m_Spectrum{};  ///< m_NumOfBins doubles
    /// [chain][channel]; m_NumOfBins doubles each. The first in the spectrum's scale, the second linear, DC first.
    std::array<ValBuffer**, MaxChains> m_MaxHold{};
    std::array<ValBuffer**, MaxChains> m_ChannelPowerMaxHold{};
    std::array<ValBuffer*, MaxChains> m_Histogram{};  ///< 20 counts of I and Q together
    std::array<ValBuffer*, MaxChains> m_HistogramI{};
    std::array<ValBuffer*, MaxChains> m_HistogramQ{};
    std::array<std::pair<double, double>*, MaxChains> m_HistogramRange{};  ///< (minimum, maximum)
    std::array<ValBuffer*, MaxChains> m_Average{};                         ///< in the spectrum's scale
    std::array<ValBuffer*, MaxChains> m_ChannelPowerAverage{};             ///< linear, DC first
    PeakList** m_Peaks =
        nullptr;  ///< three pointers, null for chains without data; null before the first FindMaxPoints
    SyncObjectsOSAL::CriticalSectionOSAL* m_pThreadSync = nullptr;
    std::array<double, MaxChains> m_Gain{};  ///< dB taken off every power
    std::array<IQBuffer*, MaxChains> m_Chain{};
    std::uint32_t m_NumOfSubBuffers = 0;  ///< whole transforms in the last sweep
    std::array<double, MaxChains> m_ChannelPowerPerChain{};
    std::array<double, MaxChains> m_ChannelAverage{};
    std::array<double, MaxChains> m_ChannelPeak{};
    std::array<double, MaxChains> m_ChannelPeakFreq{};
    bool m_VesperTestInProgress = false;
    bool m_IsBRK = false;
    KelpsFFTSpec_C_64fc* m_pFFTSpec = nullptr;
    std::uint8_t* m_pFFTSpecBuffer = nullptr;
    std::uint8_t* m_pSpec = nullptr;
    double* m_pTmp1 = nullptr;
    double* m_pSubBufferTmp = nullptr;
    double* m_pAuxSweepBuffer = nullptr;
    double* m_pAuxBinsBuffer = nullptr;
    std::complex<double>* m_pTmpCplxFFT = nullptr;
    double m_KnownSpikePeriod = 60.0;       ///< known spikes lie on multiples of this frequency
    double m_KnownSpikeTolerance = 0.0085;  ///< and this far above each

protected:
    /// ManualGain for m_Channel with the trace lines that every family writes under its own operation's name.
    double FamilyGain(const char* function, ChipFamily family, unsigned preLNAGain, unsigned internalGain,
                      unsigned band, const std::string& chain, unsigned boardSku);

private:
    struct Buffers;

    void InitProps();
    int Power2(unsigned n);
    void TakeSamples(const double* const* i, const double* const* q, unsigned numOfSamples, int chains);
    void ConvertSamples(const double* const* i, const double* const* q, unsigned numOfSamples);
    void ReduceDC(int numOfSamples, int chain);
    double CalcChannelPower(const double* linear, double gain, double noiseFloor);
    void CalcChannelAverageAndPeak(const double* spectrum, unsigned chain);
    double GetFrequencyCutoff();
    void CalculateHistogram(int chain);
    double CalculateAverage(const double* buffer, int length);
    void CalculateMaxPoint(std::pair<double, double>& out, const double* buffer, int length, double startFreq,
                           double baseIndex, double step);
    void GetInBandBuffer(const double* src, double** dst, int length);

    void DropBuffers();
    void ReleaseBuffers();
    void AllocateBuffers(int nChains);
    bool PrepareTransform();
    void RebuildBuffers(int nChains);
    void GrowSweepBuffers(unsigned room);
    void CompensateFrequency(double* power);
    void UpdateChannelPower(int chain, double noiseFloor);
    void CheckLastSweep();
    void VoidSpectra();
    void UpdateChain(int chain, double noiseFloor);
    void ShiftHalves(double* spectrum);
    void FindChainPeaks(const double* inBand, int inBandLen, int lastSlice, PeakList& peaks);
    void SlidingAverages(const double* buffer, int length, double* averages);
    const double* PeakSource(int chain);
    double SpurPower(int chain, unsigned bin);
    double BandStart() const;
    bool BuffersFit();
    void RequireBuffers();
    void RequireSamples();
    double* ChannelBuffer(const std::array<ValBuffer**, MaxChains>& buffers, int chain);
    void CopyOut(const std::array<ValBuffer*, MaxChains>& from, double** to, unsigned length);
    void CopyIn(double** from, const std::array<ValBuffer*, MaxChains>& to, unsigned length);

    std::unique_ptr<Buffers> m_buffers;  ///< what all the views above point into
};

}  // namespace LumenSpectrumAnalyzer

// What the public views of CLmnSA point into, and how this module reports a failure. Private to the engine.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "Kelp.h"
#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

/// Logs `text` at error level and throws it as a heap-allocated Utilities::Exception.
[[noreturn]] void ThrowNew(const char* function, const std::string& text);
/// The same by value.
[[noreturn]] void ThrowValue(const char* function, const std::string& text);
/// Nothing for status 0; else logs `logText` and throws the status message as a heap-allocated Utilities::Exception.
void CheckStatus(KelpStatus status, const char* function, const char* logText = "KELP error occured");
/// Throws by value unless `chain` is 0, 1 or 2.
void CheckChain(unsigned chain, const char* function);
/// The whole part of `value`, kept within 0 to `most`; 0 for a not-a-number.
int WholeWithin(double value, int most);

/// What new buffers hold: zeros, or anything because the maker fills them at once.
enum class Contents { Zeros, Unset };

/// A block of the heap on a cache line's border that keeps its storage while it suffices.
template <typename T>
class AlignedBuffer {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    /// Room for `count` elements. Storage is only replaced when it is too small; after bad_alloc all is as before.
    void Fit(std::size_t count, Contents contents = Contents::Zeros) {
        if (count > m_capacity) {
            if (count > SIZE_MAX / sizeof(T)) throw std::bad_alloc();
            m_data.reset(static_cast<T*>(::operator new(count * sizeof(T), Alignment)));
            m_capacity = count;
        }
        if (count && contents == Contents::Zeros) std::memset(static_cast<void*>(m_data.get()), 0, count * sizeof(T));
    }
    void Release() {
        m_data.reset();
        m_capacity = 0;
    }
    T* Data() const { return m_data.get(); }
    std::size_t Capacity() const { return m_capacity; }

private:
    static constexpr std::align_val_t Alignment{64};
    struct Free {
        void operator()(T* data) const { ::operator delete(data, Alignment); }
    };
    std::unique_ptr<T, Free> m_data;
    std::size_t m_capacity = 0;
};

/// One block of doubles for each channel, and the pointers to pointers through which callers reach them.
struct ChannelBuffers {
    void Make(std::size_t channels, std::size_t bins, Contents contents);
    void Drop();
    void Release();

    AlignedBuffer<double> values;
    std::vector<ValBuffer> views;
    std::vector<ValBuffer*> pointers;
};

/// Memory of the vector module, which keeps its storage while it suffices.
class KelpBlock {
public:
    /// Null when no memory is left.
    std::uint8_t* Fit(std::int32_t size) {
        if (size > m_size) {
            m_data.reset(static_cast<std::uint8_t*>(kelpMalloc(size)));
            m_size = m_data ? size : 0;
        }
        return m_data.get();
    }
    void Release() {
        m_data.reset();
        m_size = 0;
    }

private:
    struct Free {
        void operator()(std::uint8_t* p) const { kelpsFree(p); }
    };
    std::unique_ptr<std::uint8_t, Free> m_data;
    std::int32_t m_size = 0;
};

/// One ValBuffer and its storage, which stays when the view is dropped.
struct OwnedView {
    void Make(std::size_t count, Contents contents = Contents::Zeros) {
        values.Fit(count, contents);
        view.val = values.Data();
    }
    void Drop() { view.val = nullptr; }
    void Release() {
        Drop();
        values.Release();
    }

    AlignedBuffer<double> values;
    ValBuffer view;
};

struct ChainBuffers {
    std::array<OwnedView*, 9> Views() {
        return {&currSweep,  &iSweep,     &qSweep,  &spectrum,           &histogram,
                &histogramI, &histogramQ, &average, &channelPowerAverage};
    }

    OwnedView currSweep;  ///< complex: two doubles a sample
    OwnedView iSweep;
    OwnedView qSweep;
    OwnedView spectrum;
    OwnedView histogram;
    OwnedView histogramI;
    OwnedView histogramQ;
    OwnedView average;
    OwnedView channelPowerAverage;
    ChannelBuffers maxHold;
    ChannelBuffers channelPowerMaxHold;
    AlignedBuffer<IQBuffer> iq;
    std::pair<double, double> histogramRange{0.0, 0.0};
    bool spectrumIsLinear = false;  ///< not yet through LinearToLog
};

struct CLmnSA::Buffers {
    SyncObjectsOSAL::CriticalSectionOSAL threadSync;
    std::array<ChainBuffers, MaxChains> chains;
    std::array<std::unique_ptr<PeakList>, MaxChains> peaks;
    std::array<PeakList*, MaxChains> peakPointers{};
    KelpBlock spec;
    KelpBlock work;
    KelpsFFTSpec_C_64fc* transform = nullptr;  ///< in `spec`
    int transformOrder = 0;
    AlignedBuffer<double> tmp1;
    AlignedBuffer<double> subBuffer;
    AlignedBuffer<double> auxSweep;
    AlignedBuffer<double> auxBins;
    AlignedBuffer<std::complex<double>> cplxFft;
    // What the buffers were made for; all 0 while there are none.
    int chainCount = 0;
    std::uint32_t bins = 0;
    std::uint32_t samples = 0;
    Contents fresh = Contents::Zeros;  ///< of those buffers that AddSweep fills when it rebuilds
};

}  // namespace LumenSpectrumAnalyzer

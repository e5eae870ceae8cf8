// The vector primitives that gain from wide registers, written once: over a vector type V, or as plain loops where the
// compiler finds the vectors of its instructions by itself.
#pragma once

#include "KelpFftKernel.h"

namespace {

/// Calls f(offset, lanes) for each whole vector and for the rest.
template <class V, class F>
KELP_INLINE void forVectors(int length, F&& f) {
    std::size_t at = 0;
    const std::size_t n = static_cast<std::size_t>(length);
    for (; at + V::lanes <= n; at += V::lanes)
        f(at, Constant<V::lanes>{});
    if (at < n) f(at, static_cast<int>(n - at));
}

/// Loads `lanes` doubles; the other lanes are `filler`.
template <class V>
KELP_INLINE V loadPart(const double* p, int lanes, double filler) {
    double v[V::lanes];
    for (int k = 0; k < V::lanes; k++)
        v[k] = k < lanes ? p[k] : filler;
    return V::load(v);
}

template <class V>
KELP_INLINE void storePart(V x, double* p, int lanes) {
    double v[V::lanes];
    x.store(v);
    for (int k = 0; k < lanes; k++)
        p[k] = v[k];
}

/// log10(x) + exponentOffset * log10(2) for positive normal finite x, error below one unit in the last place.
/// x = 2^e m with m from root 1/2 to root 2; with f = m - 1 and s = f / (2 + f), log(m) = 2 artanh(s) = f - f^2 / 2 +
/// s (f^2 / 2 + R(s^2)). R's coefficients are a Chebyshev fit of the artanh series, error 3e-20. The sums that matter
/// are carried in two parts: the high one short enough for its product with the short high part of 1 / ln 10 to be
/// exact.
template <class V>
KELP_INLINE V log10Normal(V x, V exponentOffset) {
    V m, e;
    V::splitExponent(x, m, e);
    e = e + exponentOffset;
    const V f = m - V::set(1.0);
    const V s = f / (f + V::set(2.0));
    const V z = s * s;
    V r = V::set(0.13086626147840102138);
    r = V::mulAdd(r, z, V::set(0.13268773138656885185));
    r = V::mulAdd(r, z, V::set(0.15386239702814658188));
    r = V::mulAdd(r, z, V::set(0.18181795640132906276));
    r = V::mulAdd(r, z, V::set(0.22222222391713917442));
    r = V::mulAdd(r, z, V::set(0.28571428570803611811));
    r = V::mulAdd(r, z, V::set(0.40000000000000876983));
    r = V::mulAdd(r, z, V::set(0.66666666666666666465));
    const V halfSquare = V::set(0.5) * f * f;
    const V tail = s * V::mulAdd(r, z, halfSquare);
    const V high = V::shortened(f - halfSquare);
    const V low = ((f - high) - halfSquare) + tail;
    const V ln10High = V::set(0.4342944771051407), ln10Low = V::set(4.798111141615973e-09);   // 1 / ln 10
    const V log2High = V::set(0.3010299956640665), log2Low = V::set(-8.532344317057107e-14);  // log10(2)
    const V main = e * log2High;
    const V product = high * ln10High;
    const V sum = main + product;
    const V small = V::mulAdd(e, log2Low, V::mulAdd(low + high, ln10Low, low * ln10High));
    return sum + (small + ((main - sum) + product));
}

/// The same for any values: true when a zero was among them.
template <class V>
bool log10Special(V x, double* result, int lanes) {
    const double smallestNormal = 2.2250738585072014e-308, largest = KELP_MAXABS_64F;
    double v[V::lanes], normal[V::lanes], offset[V::lanes], r[V::lanes];
    x.store(v);
    for (int k = 0; k < V::lanes; k++) {
        const bool subnormal = v[k] > 0.0 && v[k] < smallestNormal;
        offset[k] = subnormal ? -54.0 : 0.0;
        normal[k] = subnormal ? v[k] * 0x1p54 : v[k] >= smallestNormal && v[k] <= largest ? v[k] : 1.0;
    }
    log10Normal(V::load(normal), V::load(offset)).store(r);
    bool zero = false;
    const double infinity = largest * 2.0;
    for (int k = 0; k < lanes; k++) {
        zero = zero || v[k] == 0.0;
        if (v[k] == 0.0) r[k] = -infinity;
        if (v[k] > largest) r[k] = infinity;
        if (!(v[k] >= 0.0)) r[k] = infinity - infinity;
        result[k] = r[k];
    }
    return zero;
}

template <class V>
bool log10Vector(const double* src, double* dst, int length) {
    bool zero = false;
    forVectors<V>(length, [&](std::size_t at, auto lanes) KELP_INLINE_LAMBDA {
        const V x = lanes == V::lanes ? V::load(src + at) : loadPart<V>(src + at, lanes, 1.0);
        if (!V::allNormal(x)) {
            zero = log10Special(x, dst + at, lanes) || zero;
            return;
        }
        const V y = log10Normal(x, V::set(0.0));
        if (lanes == V::lanes) {
            y.store(dst + at);
        } else {
            storePart(y, dst + at, lanes);
        }
    });
    return zero;
}

template <class V>
void magnitudeVector(const double* src, double* dst, int length) {
    for (std::ptrdiff_t k = 0; k < length; k++)
        dst[k] = __builtin_sqrt(src[2 * k] * src[2 * k] + src[2 * k + 1] * src[2 * k + 1]);
}

template <class V>
void minMaxVector(const double* src, int length, double* min, double* max) {
    const double infinity = KELP_MAXABS_64F * 2.0;
    V low = V::set(infinity), high = V::set(-infinity);
    forVectors<V>(length, [&](std::size_t at, auto lanes) KELP_INLINE_LAMBDA {
        const V x = lanes == V::lanes ? V::load(src + at) : loadPart<V>(src + at, lanes, src[at]);
        low = V::smaller(x, low);
        high = V::larger(x, high);
    });
    double l[V::lanes], h[V::lanes];
    low.store(l);
    high.store(h);
    for (int k = 1; k < V::lanes; k++) {
        l[0] = l[k] < l[0] ? l[k] : l[0];
        h[0] = h[k] > h[0] ? h[k] : h[0];
    }
    *min = l[0];
    *max = h[0];
}

template <class V>
void cplxToRealVector(const double* src, double* re, double* im, int length) {
    forVectors<V>(length, [&](std::size_t at, auto lanes) KELP_INLINE_LAMBDA {
        if (lanes == V::lanes) {
            V x, y;
            V::loadInterleaved(src + 2 * at, x, y);
            x.store(re + at);
            y.store(im + at);
            return;
        }
        for (std::size_t k = at; k < at + static_cast<std::size_t>(lanes); k++) {
            re[k] = src[2 * k];
            im[k] = src[2 * k + 1];
        }
    });
}

template <class V>
void convert16sVector(const Kelp16s* src, double* dst, int length, double factor) {
    for (std::ptrdiff_t k = 0; k < length; k++)
        dst[k] = src[k] * factor;
}

// Below, a pair of 16-bit samples is one 32-bit word with I in the low half.
static_assert(std::endian::native == std::endian::little);

/// The low 16 bits of x cut toward zero; 0 when x isn't finite or is 2^63 or more in size.
KELP_INLINE Kelp16s truncated16(double x) {
    const bool fits = x > -0x1p63 && x < 0x1p63;
    return static_cast<Kelp16s>(static_cast<std::uint16_t>(fits ? static_cast<std::int64_t>(x) : 0));
}

/// A run of vectors at a time, as if all values were within 32 bits; if one isn't, or for the rest, one by one.
template <class V>
void truncInterleaveVector(const double* i, const double* q, Kelp16s* iq, int length) {
    constexpr std::size_t Run = 1024;
    const std::size_t n = static_cast<std::size_t>(length);
    for (std::size_t at = 0; at < n; at += Run) {
        const std::size_t end = n - at < Run ? n : at + Run;
        typename V::Bits fit = ~typename V::Bits{};
        if (end - at == Run) {
            for (std::size_t k = at; k < end; k += V::lanes) {
                const auto low = V::truncated(V::load(i + k), fit) & 0xFFFF;
                const auto words = low | (V::truncated(V::load(q + k), fit) << 16);
                std::memcpy(iq + 2 * k, &words, sizeof words);
            }
            if (V::allSigns(fit)) continue;
        }
        for (std::size_t k = at; k < end; k++) {
            iq[2 * k] = truncated16(i[k]);
            iq[2 * k + 1] = truncated16(q[k]);
        }
    }
}

/// 32768 pairs at a time can't overflow 32 bits.
template <class V>
void sumPairsVector(const Kelp16s* iq, int length, double* sumI, double* sumQ) {
    std::int64_t totalI = 0, totalQ = 0;
    for (std::ptrdiff_t at = 0; at < length; at += 32768) {
        const std::ptrdiff_t end = length - at < 32768 ? length : at + 32768;
        std::int32_t partI = 0, partQ = 0;
        for (std::ptrdiff_t k = at; k < end; k++) {
            partI += iq[2 * k];
            partQ += iq[2 * k + 1];
        }
        totalI += partI;
        totalQ += partQ;
    }
    *sumI = static_cast<double>(totalI);
    *sumQ = static_cast<double>(totalQ);
}

template <class V>
void subPairsVector(Kelp16s i, Kelp16s q, Kelp16s* srcDst, int length) {
    for (std::ptrdiff_t k = 0; k < length; k++) {
        srcDst[2 * k] = static_cast<Kelp16s>(static_cast<std::uint16_t>(srcDst[2 * k] - i));
        srcDst[2 * k + 1] = static_cast<Kelp16s>(static_cast<std::uint16_t>(srcDst[2 * k + 1] - q));
    }
}

/// A run at a time: first the parts, then from these, still near, the complex numbers.
template <class V>
void fanOutVector(const Kelp16s* iq, double* cplx, double* i, double* q, int length) {
    constexpr std::size_t Run = 128;
    const std::size_t n = static_cast<std::size_t>(length);
    for (std::size_t at = 0; at < n; at += Run) {
        const std::size_t end = n - at < Run ? n : at + Run, whole = end - (end - at) % V::lanes;
        for (std::size_t k = at; k < whole; k += V::lanes) {
            typename V::Words pairs;
            std::memcpy(&pairs, iq + 2 * k, sizeof pairs);
            V::fromWords((pairs << 16) >> 16).store(i + k);
            V::fromWords(pairs >> 16).store(q + k);
        }
        for (std::size_t k = at; k < whole; k += V::lanes)
            V::storeInterleaved(cplx + 2 * k, V::load(i + k), V::load(q + k));
        for (std::size_t k = whole; k < end; k++) {
            cplx[2 * k] = i[k] = iq[2 * k];
            cplx[2 * k + 1] = q[k] = iq[2 * k + 1];
        }
    }
}

template <class V, int G>
constexpr KelpKernel makeKernel(const char* name) {
    return {name,
            makeFftKernel<V, G>(),
            log10Vector<V>,
            magnitudeVector<V>,
            minMaxVector<V>,
            cplxToRealVector<V>,
            convert16sVector<V>,
            truncInterleaveVector<V>,
            sumPairsVector<V>,
            subPairsVector<V>,
            fanOutVector<V>};
}

}  // namespace

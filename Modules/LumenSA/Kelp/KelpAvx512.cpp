// The kernel for x86 processors with AVX-512 (F and DQ): eight doubles a vector. The instructions are switched on for
// this file's own functions only, behind the headers, so that no shared inline function is compiled with them.
#include "KelpKernel.h"
#if KELP_X86
#if defined(__GNUC__) && !defined(__clang__)
// The compiler's own header starts results from a vector that it means to be undefined.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

#include <cstddef>
#include <cstring>
#include <utility>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512dq,avx2,fma"))), apply_to = function)
#elif defined(__GNUC__)
#pragma GCC push_options
#pragma GCC target("avx512f,avx512dq,avx2,fma")
#endif

#include "KelpVectorKernel.h"

namespace {

struct Avx512 {
    static constexpr int lanes = 8;
    __m512d v;

    static KELP_INLINE Avx512 load(const double* p) { return {_mm512_loadu_pd(p)}; }
    static KELP_INLINE Avx512 set(double x) { return {_mm512_set1_pd(x)}; }
    KELP_INLINE void store(double* p) const { _mm512_storeu_pd(p, v); }
    static KELP_INLINE void deinterleave(Avx512 a, Avx512 b, Avx512& even, Avx512& odd) {
        even.v = _mm512_permutex2var_pd(a.v, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), b.v);
        odd.v = _mm512_permutex2var_pd(a.v, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), b.v);
    }
    static KELP_INLINE void loadInterleaved(const double* p, Avx512& re, Avx512& im) {
        deinterleave(load(p), load(p + 8), re, im);
    }
    static KELP_INLINE void storeInterleaved(double* p, Avx512 re, Avx512 im) {
        _mm512_storeu_pd(p, _mm512_permutex2var_pd(re.v, _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11), im.v));
        _mm512_storeu_pd(p + 8, _mm512_permutex2var_pd(re.v, _mm512_setr_epi64(4, 12, 5, 13, 6, 14, 7, 15), im.v));
    }
    static KELP_INLINE void transpose(Avx512* x) {
        __m512d pair[8], quad[8];
        unroll<4>([&](auto k) KELP_INLINE_LAMBDA {
            pair[2 * k] = _mm512_unpacklo_pd(x[2 * k].v, x[2 * k + 1].v);
            pair[2 * k + 1] = _mm512_unpackhi_pd(x[2 * k].v, x[2 * k + 1].v);
        });
        // Rows 0, 1 of each half: columns 0, 1, 4, 5 in quarters, then 2, 3, 6, 7.
        unroll<2>([&](auto k) KELP_INLINE_LAMBDA {
            quad[k] = _mm512_shuffle_f64x2(pair[k], pair[k + 2], 0x88);
            quad[k + 2] = _mm512_shuffle_f64x2(pair[k], pair[k + 2], 0xDD);
            quad[k + 4] = _mm512_shuffle_f64x2(pair[k + 4], pair[k + 6], 0x88);
            quad[k + 6] = _mm512_shuffle_f64x2(pair[k + 4], pair[k + 6], 0xDD);
        });
        unroll<4>([&](auto k) KELP_INLINE_LAMBDA {
            x[k].v = _mm512_shuffle_f64x2(quad[k], quad[k + 4], 0x88);
            x[k + 4].v = _mm512_shuffle_f64x2(quad[k], quad[k + 4], 0xDD);
        });
    }

    KELP_INLINE Avx512 operator+(Avx512 b) const { return {_mm512_add_pd(v, b.v)}; }
    KELP_INLINE Avx512 operator-(Avx512 b) const { return {_mm512_sub_pd(v, b.v)}; }
    KELP_INLINE Avx512 operator*(Avx512 b) const { return {_mm512_mul_pd(v, b.v)}; }
    KELP_INLINE Avx512 operator/(Avx512 b) const { return {_mm512_div_pd(v, b.v)}; }
    static KELP_INLINE Avx512 mulAdd(Avx512 a, Avx512 b, Avx512 c) { return {_mm512_fmadd_pd(a.v, b.v, c.v)}; }
    static KELP_INLINE Avx512 mulSub(Avx512 a, Avx512 b, Avx512 c) { return {_mm512_fmsub_pd(a.v, b.v, c.v)}; }
    /// c - a b
    static KELP_INLINE Avx512 subMul(Avx512 c, Avx512 a, Avx512 b) { return {_mm512_fnmadd_pd(a.v, b.v, c.v)}; }
    static KELP_INLINE Avx512 squareRoot(Avx512 a) { return {_mm512_sqrt_pd(a.v)}; }
    static KELP_INLINE Avx512 smaller(Avx512 x, Avx512 limit) { return {_mm512_min_pd(x.v, limit.v)}; }
    static KELP_INLINE Avx512 larger(Avx512 x, Avx512 limit) { return {_mm512_max_pd(x.v, limit.v)}; }

    static KELP_INLINE bool allNormal(Avx512 x) {
        const __mmask8 least = _mm512_cmp_pd_mask(x.v, _mm512_set1_pd(2.2250738585072014e-308), _CMP_GE_OQ);
        return _mm512_mask_cmp_pd_mask(least, x.v, _mm512_set1_pd(KELP_MAXABS_64F), _CMP_LE_OQ) == 0xFF;
    }
    /// x = 2^e m, m from root 1/2 to root 2. The bits are moved so that root 1/2 falls on a power of two.
    static KELP_INLINE void splitExponent(Avx512 x, Avx512& m, Avx512& e) {
        const __m512i one = _mm512_set1_epi64(0x3FF0000000000000), rootHalf = _mm512_set1_epi64(0x3FE6A09E667F3BCD);
        const __m512i bits = _mm512_add_epi64(_mm512_castpd_si512(x.v), _mm512_sub_epi64(one, rootHalf));
        e.v = _mm512_sub_pd(_mm512_cvtepi64_pd(_mm512_srli_epi64(bits, 52)), _mm512_set1_pd(1023.0));
        const __m512i fraction = _mm512_and_si512(bits, _mm512_set1_epi64(0x000FFFFFFFFFFFFF));
        m.v = _mm512_castsi512_pd(_mm512_add_epi64(fraction, rootHalf));
    }
    /// Without the low half of the significand.
    static KELP_INLINE Avx512 shortened(Avx512 x) {
        return {_mm512_and_pd(x.v, _mm512_castsi512_pd(_mm512_set1_epi64(-0x100000000LL)))};
    }
    static KELP_INLINE Avx512 fromInt16(const Kelp16s* p) {
        const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        return {_mm512_cvtepi32_pd(_mm256_cvtepi16_epi32(eight))};
    }
    /// The conversion gives -2^63 for whatever doesn't fit 64 bits, whose low bits are the zero that is wanted.
    static KELP_INLINE bool toInt16Pairs(Avx512 i, Avx512 q, Kelp16s* iq) {
        const __m512i low = _mm512_and_si512(_mm512_cvttpd_epi64(i.v), _mm512_set1_epi64(0xFFFF));
        const __m512i high = _mm512_slli_epi64(_mm512_cvttpd_epi64(q.v), 16);
        const __m256i pairs = _mm512_cvtepi64_epi32(_mm512_or_si512(low, high));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(iq), pairs);
        return true;
    }
};

}  // namespace

constinit const KelpKernel kelpAvx512Kernel = makeKernel<Avx512>("avx512");

#if defined(__clang__)
#pragma clang attribute pop
#elif defined(__GNUC__)
#pragma GCC pop_options
#endif
#endif

// The kernel for x86 processors with AVX2 and FMA: four doubles a vector. The instructions are switched on for this
// file's own functions only, behind the headers, so that no shared inline function is compiled with them.
#include "KelpKernel.h"
#if KELP_X86
#include <immintrin.h>

#include <cstddef>
#include <cstring>
#include <utility>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma"))), apply_to = function)
#elif defined(__GNUC__)
#pragma GCC push_options
#pragma GCC target("avx2,fma")
#endif

#include "KelpVectorKernel.h"

namespace {

struct Avx2 {
    static constexpr int lanes = 4;
    __m256d v;

    static KELP_INLINE Avx2 load(const double* p) { return {_mm256_loadu_pd(p)}; }
    static KELP_INLINE Avx2 set(double x) { return {_mm256_set1_pd(x)}; }
    KELP_INLINE void store(double* p) const { _mm256_storeu_pd(p, v); }
    static KELP_INLINE void deinterleave(Avx2 a, Avx2 b, Avx2& even, Avx2& odd) {
        const __m256d low = _mm256_permute2f128_pd(a.v, b.v, 0x20), high = _mm256_permute2f128_pd(a.v, b.v, 0x31);
        even.v = _mm256_unpacklo_pd(low, high);
        odd.v = _mm256_unpackhi_pd(low, high);
    }
    static KELP_INLINE void loadInterleaved(const double* p, Avx2& re, Avx2& im) {
        deinterleave(load(p), load(p + 4), re, im);
    }
    static KELP_INLINE void storeInterleaved(double* p, Avx2 re, Avx2 im) {
        const __m256d low = _mm256_unpacklo_pd(re.v, im.v), high = _mm256_unpackhi_pd(re.v, im.v);
        _mm256_storeu_pd(p, _mm256_permute2f128_pd(low, high, 0x20));
        _mm256_storeu_pd(p + 4, _mm256_permute2f128_pd(low, high, 0x31));
    }
    static KELP_INLINE void transpose(Avx2* x) {
        const __m256d a = _mm256_unpacklo_pd(x[0].v, x[1].v), b = _mm256_unpackhi_pd(x[0].v, x[1].v);
        const __m256d c = _mm256_unpacklo_pd(x[2].v, x[3].v), d = _mm256_unpackhi_pd(x[2].v, x[3].v);
        x[0].v = _mm256_permute2f128_pd(a, c, 0x20);
        x[1].v = _mm256_permute2f128_pd(b, d, 0x20);
        x[2].v = _mm256_permute2f128_pd(a, c, 0x31);
        x[3].v = _mm256_permute2f128_pd(b, d, 0x31);
    }

    KELP_INLINE Avx2 operator+(Avx2 b) const { return {_mm256_add_pd(v, b.v)}; }
    KELP_INLINE Avx2 operator-(Avx2 b) const { return {_mm256_sub_pd(v, b.v)}; }
    KELP_INLINE Avx2 operator*(Avx2 b) const { return {_mm256_mul_pd(v, b.v)}; }
    KELP_INLINE Avx2 operator/(Avx2 b) const { return {_mm256_div_pd(v, b.v)}; }
    static KELP_INLINE Avx2 mulAdd(Avx2 a, Avx2 b, Avx2 c) { return {_mm256_fmadd_pd(a.v, b.v, c.v)}; }
    static KELP_INLINE Avx2 mulSub(Avx2 a, Avx2 b, Avx2 c) { return {_mm256_fmsub_pd(a.v, b.v, c.v)}; }
    /// c - a b
    static KELP_INLINE Avx2 subMul(Avx2 c, Avx2 a, Avx2 b) { return {_mm256_fnmadd_pd(a.v, b.v, c.v)}; }
    static KELP_INLINE Avx2 squareRoot(Avx2 a) { return {_mm256_sqrt_pd(a.v)}; }
    static KELP_INLINE Avx2 smaller(Avx2 x, Avx2 limit) { return {_mm256_min_pd(x.v, limit.v)}; }
    static KELP_INLINE Avx2 larger(Avx2 x, Avx2 limit) { return {_mm256_max_pd(x.v, limit.v)}; }

    static KELP_INLINE bool allNormal(Avx2 x) {
        const __m256d least = _mm256_cmp_pd(x.v, _mm256_set1_pd(2.2250738585072014e-308), _CMP_GE_OQ);
        const __m256d most = _mm256_cmp_pd(x.v, _mm256_set1_pd(KELP_MAXABS_64F), _CMP_LE_OQ);
        return _mm256_movemask_pd(_mm256_and_pd(least, most)) == 15;
    }
    /// x = 2^e m, m from root 1/2 to root 2. The bits are moved so that root 1/2 falls on a power of two; the exponent
    /// becomes a double as the low bits of 2^52.
    static KELP_INLINE void splitExponent(Avx2 x, Avx2& m, Avx2& e) {
        const __m256i one = _mm256_set1_epi64x(0x3FF0000000000000), rootHalf = _mm256_set1_epi64x(0x3FE6A09E667F3BCD);
        const __m256i bits = _mm256_add_epi64(_mm256_castpd_si256(x.v), _mm256_sub_epi64(one, rootHalf));
        const __m256d big = _mm256_set1_pd(0x1p52);
        const __m256i exponent = _mm256_or_si256(_mm256_srli_epi64(bits, 52), _mm256_castpd_si256(big));
        e.v = _mm256_sub_pd(_mm256_castsi256_pd(exponent), _mm256_set1_pd(0x1p52 + 1023.0));
        const __m256i fraction = _mm256_and_si256(bits, _mm256_set1_epi64x(0x000FFFFFFFFFFFFF));
        m.v = _mm256_castsi256_pd(_mm256_add_epi64(fraction, rootHalf));
    }
    /// Without the low half of the significand.
    static KELP_INLINE Avx2 shortened(Avx2 x) {
        return {_mm256_and_pd(x.v, _mm256_castsi256_pd(_mm256_set1_epi64x(-0x100000000LL)))};
    }
    static KELP_INLINE Avx2 fromInt16(const Kelp16s* p) {
        const __m128i four = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        return {_mm256_cvtepi32_pd(_mm_cvtepi16_epi32(four))};
    }
    /// False, and nothing done, when a value doesn't fit 32 bits.
    static KELP_INLINE bool toInt16Pairs(Avx2 i, Avx2 q, Kelp16s* iq) {
        const __m256d sign = _mm256_set1_pd(-0.0), limit = _mm256_set1_pd(0x1p31);
        const __m256d fitsI = _mm256_cmp_pd(_mm256_andnot_pd(sign, i.v), limit, _CMP_LT_OQ);
        const __m256d fitsQ = _mm256_cmp_pd(_mm256_andnot_pd(sign, q.v), limit, _CMP_LT_OQ);
        if (_mm256_movemask_pd(_mm256_and_pd(fitsI, fitsQ)) != 15) return false;
        const __m128i low = _mm_and_si128(_mm256_cvttpd_epi32(i.v), _mm_set1_epi32(0xFFFF));
        const __m128i high = _mm_slli_epi32(_mm256_cvttpd_epi32(q.v), 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(iq), _mm_or_si128(low, high));
        return true;
    }
};

}  // namespace

constinit const KelpKernel kelpAvx2Kernel = makeKernel<Avx2>("avx2");

#if defined(__clang__)
#pragma clang attribute pop
#elif defined(__GNUC__)
#pragma GCC pop_options
#endif
#endif

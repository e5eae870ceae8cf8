// The kernel for every processor: plain C++ on small arrays, which the compiler maps to what the target always has.
#include <bit>
#include <cmath>

#include "KelpVectorKernel.h"

namespace {

template <int L>
struct Lanes {
    static constexpr int lanes = L;
    double v[L];

    template <class F>
    static KELP_INLINE Lanes each(F&& f) {
        Lanes r;
        for (int k = 0; k < L; k++)
            r.v[k] = f(k);
        return r;
    }
    static KELP_INLINE Lanes load(const double* p) {
        return each([&](int k) { return p[k]; });
    }
    static KELP_INLINE Lanes set(double x) {
        return each([&](int) { return x; });
    }
    KELP_INLINE void store(double* p) const {
        for (int k = 0; k < L; k++)
            p[k] = v[k];
    }
    static KELP_INLINE void deinterleave(Lanes a, Lanes b, Lanes& even, Lanes& odd) {
        double both[2 * L];
        a.store(both);
        b.store(both + L);
        even = each([&](int k) { return both[2 * k]; });
        odd = each([&](int k) { return both[2 * k + 1]; });
    }
    static KELP_INLINE void loadInterleaved(const double* p, Lanes& re, Lanes& im) {
        re = each([&](int k) { return p[2 * k]; });
        im = each([&](int k) { return p[2 * k + 1]; });
    }
    static KELP_INLINE void storeInterleaved(double* p, Lanes re, Lanes im) {
        for (int k = 0; k < L; k++) {
            p[2 * k] = re.v[k];
            p[2 * k + 1] = im.v[k];
        }
    }
    static KELP_INLINE void transpose(Lanes* x) {
        for (int i = 0; i < L; i++)
            for (int j = 0; j < i; j++)
                std::swap(x[i].v[j], x[j].v[i]);
    }

    KELP_INLINE Lanes operator+(Lanes b) const {
        return each([&](int k) { return v[k] + b.v[k]; });
    }
    KELP_INLINE Lanes operator-(Lanes b) const {
        return each([&](int k) { return v[k] - b.v[k]; });
    }
    KELP_INLINE Lanes operator*(Lanes b) const {
        return each([&](int k) { return v[k] * b.v[k]; });
    }
    KELP_INLINE Lanes operator/(Lanes b) const {
        return each([&](int k) { return v[k] / b.v[k]; });
    }
    static KELP_INLINE Lanes mulAdd(Lanes a, Lanes b, Lanes c) { return a * b + c; }
    static KELP_INLINE Lanes mulSub(Lanes a, Lanes b, Lanes c) { return a * b - c; }
    /// c - a b
    static KELP_INLINE Lanes subMul(Lanes c, Lanes a, Lanes b) { return c - a * b; }
    static KELP_INLINE Lanes squareRoot(Lanes a) {
        return each([&](int k) { return std::sqrt(a.v[k]); });
    }
    static KELP_INLINE Lanes smaller(Lanes x, Lanes limit) {
        return each([&](int k) { return x.v[k] < limit.v[k] ? x.v[k] : limit.v[k]; });
    }
    static KELP_INLINE Lanes larger(Lanes x, Lanes limit) {
        return each([&](int k) { return x.v[k] > limit.v[k] ? x.v[k] : limit.v[k]; });
    }

    static KELP_INLINE bool allNormal(Lanes x) {
        bool normal = true;
        for (int k = 0; k < L; k++)
            normal &= x.v[k] >= 2.2250738585072014e-308 && x.v[k] <= KELP_MAXABS_64F;
        return normal;
    }
    /// x = 2^e m, m from root 1/2 to root 2. The bits are moved so that root 1/2 falls on a power of two.
    static KELP_INLINE void splitExponent(Lanes x, Lanes& m, Lanes& e) {
        constexpr std::uint64_t one = 0x3FF0000000000000, rootHalf = 0x3FE6A09E667F3BCD;
        for (int k = 0; k < L; k++) {
            const std::uint64_t bits = std::bit_cast<std::uint64_t>(x.v[k]) + (one - rootHalf);
            e.v[k] = static_cast<double>(static_cast<std::int32_t>(bits >> 52) - 1023);
            m.v[k] = std::bit_cast<double>((bits & 0x000FFFFFFFFFFFFF) + rootHalf);
        }
    }
    /// Without the low half of the significand.
    static KELP_INLINE Lanes shortened(Lanes x) {
        return each(
            [&](int k) { return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x.v[k]) & ~0xFFFFFFFFULL); });
    }
    static KELP_INLINE Lanes fromInt16(const Kelp16s* p) {
        return each([&](int k) { return static_cast<double>(p[k]); });
    }
    static KELP_INLINE bool toInt16Pairs(Lanes, Lanes, Kelp16s*) { return false; }
};

}  // namespace

constinit const KelpFftKernel kelpSingleLaneFft = makeFftKernel<Lanes<1>>();
constinit const KelpKernel kelpPortableKernel = makeKernel<Lanes<4>>("portable");

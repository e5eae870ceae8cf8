// L doubles side by side, as the vector type that g++ and clang have on every processor. The same text serves every
// width and every processor: a source that switches on wider instructions includes it behind them, and all of it is in
// an unnamed namespace, so that no code compiled for one instruction set may stand in for another's.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "KelpKernel.h"

#define KELP_INLINE inline __attribute__((always_inline))
#define KELP_INLINE_LAMBDA __attribute__((always_inline))

namespace {

/// A number known to the compiler.
template <int K>
struct Constant {
    KELP_INLINE constexpr operator int() const { return K; }
};

/// Calls f with the constants 0 .. N-1: a loop that is unrolled in every build.
template <class F, int... K>
KELP_INLINE void unrollImpl(F&& f, std::integer_sequence<int, K...>) {
    (f(Constant<K>{}), ...);
}
template <int N, class F>
KELP_INLINE void unroll(F&& f) {
    unrollImpl(f, std::make_integer_sequence<int, N>{});
}

/// The compiler's types for Bytes / 8 lanes.
template <int Bytes>
struct VectorTypes;
template <>
struct VectorTypes<16> {
    using Doubles = double __attribute__((vector_size(16)));
    using Bits = std::uint64_t __attribute__((vector_size(16)));
    using Words = std::int32_t __attribute__((vector_size(8)));
};
template <>
struct VectorTypes<32> {
    using Doubles = double __attribute__((vector_size(32)));
    using Bits = std::uint64_t __attribute__((vector_size(32)));
    using Words = std::int32_t __attribute__((vector_size(16)));
};
template <>
struct VectorTypes<64> {
    using Doubles = double __attribute__((vector_size(64)));
    using Bits = std::uint64_t __attribute__((vector_size(64)));
    using Words = std::int32_t __attribute__((vector_size(32)));
};

template <int L>
struct Lanes {
    static constexpr int lanes = L;
    using Doubles = typename VectorTypes<8 * L>::Doubles;
    using Bits = typename VectorTypes<8 * L>::Bits;
    using Words = typename VectorTypes<8 * L>::Words;
    using Places = std::make_integer_sequence<int, L>;

    Doubles v;

    static KELP_INLINE Lanes load(const double* p) {
        Lanes x;
        std::memcpy(&x.v, p, sizeof x.v);
        return x;
    }
    static KELP_INLINE Lanes set(double x) { return {x - Doubles{}}; }
    KELP_INLINE void store(double* p) const { std::memcpy(p, &v, sizeof v); }
    /// One lane every `Step` doubles.
    template <int Step>
    KELP_INLINE void storeApart(double* p) const {
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { p[k * Step] = v[int{k}]; });
    }

    /// Places of the first L values a b a b ..., starting at `First` of each vector.
    template <int First, int... K>
    static KELP_INLINE Doubles interleaved(Doubles a, Doubles b, std::integer_sequence<int, K...>) {
        return __builtin_shufflevector(a, b, (First + K / 2 + (K % 2) * L)...);
    }
    template <int First, int... K>
    static KELP_INLINE Doubles everySecond(Doubles a, Doubles b, std::integer_sequence<int, K...>) {
        return __builtin_shufflevector(a, b, (2 * K + First)...);
    }
    static KELP_INLINE void loadInterleaved(const double* p, Lanes& re, Lanes& im) {
        const Doubles a = load(p).v, b = load(p + L).v;
        re.v = everySecond<0>(a, b, Places{});
        im.v = everySecond<1>(a, b, Places{});
    }
    static KELP_INLINE void storeInterleaved(double* p, Lanes re, Lanes im) {
        Lanes{interleaved<0>(re.v, im.v, Places{})}.store(p);
        Lanes{interleaved<L / 2>(re.v, im.v, Places{})}.store(p + L);
    }
    template <int Step, int... K>
    static KELP_INLINE void exchange(Doubles& a, Doubles& b, std::integer_sequence<int, K...>) {
        const Doubles low = __builtin_shufflevector(a, b, (K & Step ? L + K - Step : K)...);
        b = __builtin_shufflevector(a, b, (K & Step ? L + K : K + Step)...);
        a = low;
    }
    /// Turns a square of lanes: squares of half the size trade places, then those within.
    template <int Step = L / 2>
    static KELP_INLINE void transpose(Lanes* x) {
        if constexpr (Step > 0) {
            unroll<L>([&](auto k) KELP_INLINE_LAMBDA {
                if constexpr ((k & Step) == 0) exchange<Step>(x[k].v, x[k + Step].v, Places{});
            });
            transpose<Step / 2>(x);
        }
    }

    KELP_INLINE Lanes operator+(Lanes b) const { return {v + b.v}; }
    KELP_INLINE Lanes operator-(Lanes b) const { return {v - b.v}; }
    KELP_INLINE Lanes operator*(Lanes b) const { return {v * b.v}; }
    KELP_INLINE Lanes operator/(Lanes b) const { return {v / b.v}; }
    // One rounding where the processor has it, else two.
    static KELP_INLINE Lanes mulAdd(Lanes a, Lanes b, Lanes c) { return {a.v * b.v + c.v}; }
    static KELP_INLINE Lanes mulSub(Lanes a, Lanes b, Lanes c) { return {a.v * b.v - c.v}; }
    /// c - a b
    static KELP_INLINE Lanes subMul(Lanes c, Lanes a, Lanes b) { return {c.v - a.v * b.v}; }
    static KELP_INLINE Lanes smaller(Lanes x, Lanes limit) { return {x.v < limit.v ? x.v : limit.v}; }
    static KELP_INLINE Lanes larger(Lanes x, Lanes limit) { return {x.v > limit.v ? x.v : limit.v}; }

    /// True when the sign bit is set in all lanes.
    static KELP_INLINE bool allSigns(Bits b) {
        std::uint64_t both = b[0];
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { both &= b[int{k}]; });
        return both >> 63 != 0;
    }
    static KELP_INLINE bool allNormal(Lanes x) {
        return allSigns(reinterpret_cast<Bits>((x.v >= 2.2250738585072014e-308) & (x.v <= KELP_MAXABS_64F)));
    }
    /// x = 2^e m, m from root 1/2 to root 2. The bits are moved so that root 1/2 falls on a power of two; the exponent
    /// becomes a double as the low bits of 2^52.
    static KELP_INLINE void splitExponent(Lanes x, Lanes& m, Lanes& e) {
        constexpr std::uint64_t one = 0x3FF0000000000000, rootHalf = 0x3FE6A09E667F3BCD;
        const Bits bits = reinterpret_cast<Bits>(x.v) + (one - rootHalf);
        e.v = reinterpret_cast<Doubles>((bits >> 52) | std::bit_cast<std::uint64_t>(0x1p52)) - (0x1p52 + 1023.0);
        m.v = reinterpret_cast<Doubles>((bits & 0x000FFFFFFFFFFFFF) + rootHalf);
    }
    /// Without the low half of the significand.
    static KELP_INLINE Lanes shortened(Lanes x) {
        return {reinterpret_cast<Doubles>(reinterpret_cast<Bits>(x.v) & ~std::uint64_t{0xFFFFFFFF})};
    }
    /// Whole parts, cut toward zero; what doesn't lie within 32 bits gives anything, and loses its sign bit in `fit`.
    static KELP_INLINE Words truncated(Lanes x, Bits& fit) {
        const Doubles size = reinterpret_cast<Doubles>(reinterpret_cast<Bits>(x.v) & ~(std::uint64_t{1} << 63));
        fit &= reinterpret_cast<Bits>(size - 0x1p31);
        return __builtin_convertvector(x.v, Words);
    }
    static KELP_INLINE Lanes fromWords(Words w) { return {__builtin_convertvector(w, Doubles)}; }
};

}  // namespace

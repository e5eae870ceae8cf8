// The transform, written once over a vector type V of L doubles and compiled by each kernel for its instructions. All
// is in an unnamed namespace: no code compiled for one instruction set may stand in for another's.
//
// In work memory a block of n points is n / L pairs of vectors: L real parts, then L imaginary parts. A pass combines
// points n / radix apart, so that its vectors are whole lanes of neighbours and nothing is shuffled. Only the last
// sub-transforms of L * L points turn a square of lanes once.
#pragma once

#include <cstddef>
#include <cstring>
#include <utility>

#include "KelpKernel.h"

#if defined(_MSC_VER) && !defined(__clang__)
#define KELP_INLINE __forceinline
#define KELP_INLINE_LAMBDA
#else
#define KELP_INLINE inline __attribute__((always_inline))
#define KELP_INLINE_LAMBDA __attribute__((always_inline))
#endif

namespace {

template <class V>
struct Cplx {
    V re, im;
};

template <class V>
KELP_INLINE Cplx<V> operator+(Cplx<V> a, Cplx<V> b) {
    return {a.re + b.re, a.im + b.im};
}

template <class V>
KELP_INLINE Cplx<V> operator-(Cplx<V> a, Cplx<V> b) {
    return {a.re - b.re, a.im - b.im};
}

template <class V>
KELP_INLINE Cplx<V> operator*(Cplx<V> a, Cplx<V> w) {
    return {V::mulSub(a.re, w.re, a.im * w.im), V::mulAdd(a.re, w.im, a.im * w.re)};
}

/// a - i b
template <class V>
KELP_INLINE Cplx<V> minusI(Cplx<V> a, Cplx<V> b) {
    return {a.re + b.im, a.im - b.re};
}

/// a + i b
template <class V>
KELP_INLINE Cplx<V> plusI(Cplx<V> a, Cplx<V> b) {
    return {a.re - b.im, a.im + b.re};
}

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

// Forward transforms of R vectors, natural order in and out.

template <class V>
KELP_INLINE void butterfly2(Cplx<V>& a, Cplx<V>& b) {
    const Cplx<V> d = a - b;
    a = a + b;
    b = d;
}

template <class V>
KELP_INLINE void butterfly4(Cplx<V>& a, Cplx<V>& b, Cplx<V>& c, Cplx<V>& d) {
    butterfly2(a, c);
    butterfly2(b, d);
    const Cplx<V> even = b;
    b = minusI(c, d);
    d = plusI(c, d);
    c = a - even;
    a = a + even;
}

template <class V>
KELP_INLINE void butterfly8(Cplx<V>& a, Cplx<V>& b, Cplx<V>& c, Cplx<V>& d, Cplx<V>& e, Cplx<V>& f, Cplx<V>& g,
                            Cplx<V>& h) {
    const V half = V::set(0.70710678118654752440);
    butterfly4(a, c, e, g);
    butterfly4(b, d, f, h);
    // Odd outputs 1 and 3 turn by an eighth and three eighths: (1 - i) / root 2 and (-1 - i) / root 2.
    const V sum1 = d.re + d.im, difference1 = d.im - d.re, sum3 = h.re + h.im, difference3 = h.im - h.re;
    const Cplx<V> x0 = a, x1 = c, x2 = e, x3 = g, y0 = b, y2 = f;
    a = x0 + y0;
    e = x0 - y0;
    b = {V::mulAdd(sum1, half, x1.re), V::mulAdd(difference1, half, x1.im)};
    f = {V::subMul(x1.re, sum1, half), V::subMul(x1.im, difference1, half)};
    c = minusI(x2, y2);
    g = plusI(x2, y2);
    d = {V::mulAdd(difference3, half, x3.re), V::subMul(x3.im, sum3, half)};
    h = {V::subMul(x3.re, difference3, half), V::mulAdd(sum3, half, x3.im)};
}

template <int R, class V>
KELP_INLINE void butterfly(Cplx<V>* x) {
    if constexpr (R == 2) butterfly2(x[0], x[1]);
    if constexpr (R == 4) butterfly4(x[0], x[1], x[2], x[3]);
    if constexpr (R == 8) butterfly8(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7]);
}

template <class V>
KELP_INLINE Cplx<V> loadPair(const double* p) {
    return {V::load(p), V::load(p + V::lanes)};
}

template <class V>
KELP_INLINE void storePair(double* p, Cplx<V> x) {
    x.re.store(p);
    x.im.store(p + V::lanes);
}

/// One pass of radix R over n points. The source is work memory, or complex numbers as the caller has them.
template <class V, int R, bool Interleaved>
void pass(const double* src, double* dst, std::size_t n, const double* twiddle) {
    constexpr int L = V::lanes;
    const std::size_t stride = 2 * (n / R);
    for (std::size_t at = 0; at < stride; at += 2 * L) {
        Cplx<V> x[R];
        unroll<R>([&](auto k) KELP_INLINE_LAMBDA {
            const double* p = src + at + k * stride;
            if constexpr (Interleaved) {
                V::loadInterleaved(p, x[k].re, x[k].im);
            } else {
                x[k] = loadPair<V>(p);
            }
        });
        butterfly<R>(x);
        storePair(dst + at, x[0]);
        unroll<R - 1>([&](auto k) KELP_INLINE_LAMBDA {
            storePair(dst + at + (k + 1) * stride, x[k + 1] * loadPair<V>(twiddle + k * 2 * L));
        });
        twiddle += (R - 1) * 2 * L;
    }
}

template <class V, bool Interleaved>
void anyPass(int radix, const double* src, double* dst, std::size_t n, const double* twiddle) {
    switch (radix) {
        case 2:
            return pass<V, 2, Interleaved>(src, dst, n, twiddle);
        case 4:
            return pass<V, 4, Interleaved>(src, dst, n, twiddle);
        case 8:
            return pass<V, 8, Interleaved>(src, dst, n, twiddle);
        default:
            return pass<V, 1, Interleaved>(src, dst, n, twiddle);
    }
}

/// The last sub-transforms, L * L points each, of n points: output k of each stands at place k. With `power` their
/// squared magnitudes are added there; else they replace the points.
template <class V, bool Power>
void tails(double* x, double* power, std::size_t n, const double* twiddle) {
    constexpr int L = V::lanes;
    for (std::size_t at = 0; at < n; at += L * L) {
        Cplx<V> y[L];
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { y[k] = loadPair<V>(x + 2 * at + k * 2 * L); });
        butterfly<L>(y);
        unroll<L - 1>([&](auto k) KELP_INLINE_LAMBDA { y[k + 1] = y[k + 1] * loadPair<V>(twiddle + k * 2 * L); });
        V re[L], im[L];
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { re[k] = y[k].re; });
        V::transpose(re);
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { im[k] = y[k].im; });
        V::transpose(im);
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA { y[k] = Cplx<V>{re[k], im[k]}; });
        butterfly<L>(y);
        unroll<L>([&](auto k) KELP_INLINE_LAMBDA {
            if constexpr (Power) {
                double* p = power + at + k * L;
                V::mulAdd(y[k].im, y[k].im, V::mulAdd(y[k].re, y[k].re, V::load(p))).store(p);
            } else {
                storePair(x + 2 * at + k * 2 * L, y[k]);
            }
        });
    }
}

/// The passes from `level` on, one sub-block after the other, so that a sub-block stays in the near cache to its end.
template <class V, bool Power>
void finish(const KelpsFFTSpec_C_64fc& spec, int level, double* x, double* power, std::size_t n) {
    if (level == spec.passes) return tails<V, Power>(x, power, n, spec.tailTwiddle);
    anyPass<V, false>(spec.radix[level], x, x, n, spec.twiddle[level]);
    const std::size_t part = n / spec.radix[level];
    if (level + 1 == spec.passes) return tails<V, Power>(x, power, n, spec.tailTwiddle);
    for (std::size_t at = 0; at < n; at += part)
        finish<V, Power>(spec, level + 1, x + 2 * at, Power ? power + at : nullptr, part);
}

template <class V, bool Power>
void transformBlock(const KelpsFFTSpec_C_64fc& spec, const double* src, double* work, double* power) {
    const std::size_t n = std::size_t{1} << spec.directOrder;
    const std::size_t part = n / spec.radix[0];
    anyPass<V, true>(spec.radix[0], src, work, n, spec.twiddle[0]);
    for (std::size_t at = 0; at < n; at += part)
        finish<V, Power>(spec, 1, work + 2 * at, Power ? power + at : nullptr, part);
}

template <class V>
void forward(Kelp64f* srcDst, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work) {
    constexpr int L = V::lanes;
    transformBlock<V, false>(spec, srcDst, work, nullptr);
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    const V scale = V::set(spec.scale);
    double rowOf[2 * L];
    for (std::size_t column = 0; column < L * L; column += L) {
        std::size_t t = 0;
        for (; t + L <= rows; t += L) {
            V re[L], im[L];
            for (int k = 0; k < L; k++) {
                const double* p = work + 2 * (static_cast<std::size_t>(spec.rowOfBin[t + k]) * (L * L) + column);
                re[k] = V::load(p) * scale;
                im[k] = V::load(p + L) * scale;
            }
            V::transpose(re);
            V::transpose(im);
            for (int k = 0; k < L; k++)
                V::storeInterleaved(srcDst + 2 * ((column + k) * rows + t), re[k], im[k]);
        }
        for (; t < rows; t++) {
            std::memcpy(rowOf, work + 2 * (static_cast<std::size_t>(spec.rowOfBin[t]) * (L * L) + column),
                        sizeof rowOf);
            for (int k = 0; k < L; k++) {
                srcDst[2 * ((column + k) * rows + t)] = rowOf[k] * spec.scale;
                srcDst[2 * ((column + k) * rows + t) + 1] = rowOf[L + k] * spec.scale;
            }
        }
    }
}

template <class V>
void sweepPower(const Kelp64f* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work) {
    constexpr int L = V::lanes;
    const std::size_t n = std::size_t{1} << spec.directOrder;
    double* power = work + 2 * n;
    std::memset(power, 0, n * sizeof(double));
    for (int block = 0; block < blocks; block++)
        transformBlock<V, true>(spec, sweep + static_cast<std::size_t>(block) * 2 * n, work, power);
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    const double factor = spec.scale * spec.scale / blocks;
    for (std::size_t column = 0; column < L * L; column += L) {
        std::size_t t = 0;
        for (; t + L <= rows; t += L) {
            V v[L];
            for (int k = 0; k < L; k++)
                v[k] =
                    V::load(power + static_cast<std::size_t>(spec.rowOfBin[t + k]) * (L * L) + column) * V::set(factor);
            V::transpose(v);
            for (int k = 0; k < L; k++)
                v[k].store(mean + (column + k) * rows + t);
        }
        for (; t < rows; t++) {
            const double* p = power + static_cast<std::size_t>(spec.rowOfBin[t]) * (L * L) + column;
            for (int k = 0; k < L; k++)
                mean[(column + k) * rows + t] = p[k] * factor;
        }
    }
}

template <class V>
constexpr KelpFftKernel makeFftKernel() {
    return {V::lanes, forward<V>, sweepPower<V>};
}

}  // namespace

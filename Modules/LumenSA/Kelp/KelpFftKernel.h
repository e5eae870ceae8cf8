// The transform, written once over a vector type V of lanes and compiled by each kernel for its instructions.
//
// In work memory a block of n points is n / G groups: G real parts, then G imaginary parts, each one vector or a few. A
// pass combines points n / radix apart, so that its vectors are whole lanes of neighbours and nothing is shuffled. Only
// the last sub-transforms of G * G points turn a square of lanes once.
#pragma once

#include "KelpLanes.h"

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

template <int G, class V>
KELP_INLINE Cplx<V> loadPair(const double* p) {
    return {V::load(p), V::load(p + G)};
}

template <int G, class V>
KELP_INLINE void storePair(double* p, Cplx<V> x) {
    x.re.store(p);
    x.im.store(p + G);
}

/// One pass of radix R over n points. The source is work memory, or complex numbers as the caller has them.
template <class V, int G, int R, bool Interleaved>
void pass(const double* src, double* dst, std::size_t n, const double* twiddle) {
    constexpr int L = V::lanes;
    const std::size_t stride = 2 * (n / R);
    for (std::size_t at = 0; at < stride; at += 2 * G) {
        unroll<G / L>([&](auto part) KELP_INLINE_LAMBDA {
            Cplx<V> x[R];
            unroll<R>([&](auto k) KELP_INLINE_LAMBDA {
                const double* p = src + at + k * stride;
                if constexpr (Interleaved) {
                    V::loadInterleaved(p + 2 * L * part, x[k].re, x[k].im);
                } else {
                    x[k] = loadPair<G, V>(p + L * part);
                }
            });
            butterfly<R>(x);
            double* q = dst + at + L * part;
            storePair<G>(q, x[0]);
            unroll<R - 1>([&](auto k) KELP_INLINE_LAMBDA {
                storePair<G>(q + (k + 1) * stride, x[k + 1] * loadPair<G, V>(twiddle + k * 2 * G + L * part));
            });
        });
        twiddle += (R - 1) * 2 * G;
    }
}

template <class V, int G, bool Interleaved>
void anyPass(int radix, const double* src, double* dst, std::size_t n, const double* twiddle) {
    switch (radix) {
        case 2:
            return pass<V, G, 2, Interleaved>(src, dst, n, twiddle);
        case 4:
            return pass<V, G, 4, Interleaved>(src, dst, n, twiddle);
        case 8:
            return pass<V, G, 8, Interleaved>(src, dst, n, twiddle);
        default:
            return pass<V, G, 1, Interleaved>(src, dst, n, twiddle);
    }
}

/// G rows of G lanes, each row in vectors, turned into columns: squares of lanes trade places and turn themselves.
template <class V, int G>
KELP_INLINE void transposeRows(V (&rows)[G / V::lanes][G]) {
    constexpr int L = V::lanes;
    V turned[G / L][G];
    unroll<G / L>([&](auto part) KELP_INLINE_LAMBDA {
        unroll<G / L>([&](auto down) KELP_INLINE_LAMBDA {
            V square[L];
            unroll<L>([&](auto k) KELP_INLINE_LAMBDA { square[k] = rows[part][down * L + k]; });
            V::transpose(square);
            unroll<L>([&](auto k) KELP_INLINE_LAMBDA { turned[down][part * L + k] = square[k]; });
        });
    });
    unroll<G / L>([&](auto part) KELP_INLINE_LAMBDA {
        unroll<G>([&](auto k) KELP_INLINE_LAMBDA { rows[part][k] = turned[part][k]; });
    });
}

/// The last sub-transforms, G * G points each, of n points: output k of each stands at place k. With `power` their
/// squared magnitudes are added there; else they replace the points.
template <class V, int G, bool Power>
void tails(double* x, double* power, std::size_t n, const double* twiddle) {
    constexpr int L = V::lanes;
    for (std::size_t at = 0; at < n; at += G * G) {
        V re[G / L][G], im[G / L][G];
        unroll<G / L>([&](auto part) KELP_INLINE_LAMBDA {
            Cplx<V> y[G];
            unroll<G>([&](auto k) KELP_INLINE_LAMBDA { y[k] = loadPair<G, V>(x + 2 * at + k * 2 * G + L * part); });
            butterfly<G>(y);
            unroll<G - 1>([&](auto k) KELP_INLINE_LAMBDA {
                y[k + 1] = y[k + 1] * loadPair<G, V>(twiddle + k * 2 * G + L * part);
            });
            unroll<G>([&](auto k) KELP_INLINE_LAMBDA {
                re[part][k] = y[k].re;
                im[part][k] = y[k].im;
            });
        });
        transposeRows<V, G>(re);
        transposeRows<V, G>(im);
        unroll<G / L>([&](auto part) KELP_INLINE_LAMBDA {
            Cplx<V> y[G];
            unroll<G>([&](auto k) KELP_INLINE_LAMBDA { y[k] = Cplx<V>{re[part][k], im[part][k]}; });
            butterfly<G>(y);
            unroll<G>([&](auto k) KELP_INLINE_LAMBDA {
                if constexpr (Power) {
                    double* p = power + at + k * G + L * part;
                    V::mulAdd(y[k].im, y[k].im, V::mulAdd(y[k].re, y[k].re, V::load(p))).store(p);
                } else {
                    storePair<G>(x + 2 * at + k * 2 * G + L * part, y[k]);
                }
            });
        });
    }
}

/// The passes from `level` on, one sub-block after the other, so that a sub-block stays in the near cache to its end.
template <class V, int G, bool Power>
void finish(const KelpsFFTSpec_C_64fc& spec, int level, double* x, double* power, std::size_t n) {
    if (level == spec.passes) return tails<V, G, Power>(x, power, n, spec.tailTwiddle);
    anyPass<V, G, false>(spec.radix[level], x, x, n, spec.twiddle[level]);
    const std::size_t part = n / static_cast<std::size_t>(spec.radix[level]);
    if (level + 1 == spec.passes) return tails<V, G, Power>(x, power, n, spec.tailTwiddle);
    for (std::size_t at = 0; at < n; at += part)
        finish<V, G, Power>(spec, level + 1, x + 2 * at, Power ? power + at : nullptr, part);
}

template <class V, int G, bool Power>
void transformBlock(const KelpsFFTSpec_C_64fc& spec, const double* src, double* work, double* power) {
    const std::size_t n = std::size_t{1} << spec.directOrder;
    const std::size_t part = n / static_cast<std::size_t>(spec.radix[0]);
    anyPass<V, G, true>(spec.radix[0], src, work, n, spec.twiddle[0]);
    for (std::size_t at = 0; at < n; at += part)
        finish<V, G, Power>(spec, 1, work + 2 * at, Power ? power + at : nullptr, part);
}

template <class V, int G>
void forward(Kelp64f* srcDst, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work) {
    constexpr int L = V::lanes;
    transformBlock<V, G, false>(spec, srcDst, work, nullptr);
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    const V scale = V::set(spec.scale);
    for (std::size_t column = 0; column < G * G; column += L) {
        const double* base = work + 2 * (column / G * G) + column % G;
        std::size_t t = 0;
        for (; t + L <= rows; t += L) {
            V re[L], im[L];
            for (int k = 0; k < L; k++) {
                const double* p = base + 2 * static_cast<std::size_t>(spec.rowOfBin[t + k]) * (G * G);
                re[k] = V::load(p) * scale;
                im[k] = V::load(p + G) * scale;
            }
            V::transpose(re);
            V::transpose(im);
            for (int k = 0; k < L; k++)
                V::storeInterleaved(srcDst + 2 * ((column + k) * rows + t), re[k], im[k]);
        }
        for (; t < rows; t++) {
            const double* p = base + 2 * static_cast<std::size_t>(spec.rowOfBin[t]) * (G * G);
            for (int k = 0; k < L; k++) {
                srcDst[2 * ((column + k) * rows + t)] = p[k] * spec.scale;
                srcDst[2 * ((column + k) * rows + t) + 1] = p[G + k] * spec.scale;
            }
        }
    }
}

template <class V, int G>
void sweepPower(const Kelp64f* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work) {
    constexpr int L = V::lanes;
    const std::size_t n = std::size_t{1} << spec.directOrder;
    double* power = work + 2 * n;
    std::memset(power, 0, n * sizeof(double));
    for (int block = 0; block < blocks; block++)
        transformBlock<V, G, true>(spec, sweep + static_cast<std::size_t>(block) * 2 * n, work, power);
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    const double factor = spec.scale * spec.scale / blocks;
    for (std::size_t column = 0; column < G * G; column += L) {
        std::size_t t = 0;
        for (; t + L <= rows; t += L) {
            V v[L];
            for (int k = 0; k < L; k++)
                v[k] =
                    V::load(power + static_cast<std::size_t>(spec.rowOfBin[t + k]) * (G * G) + column) * V::set(factor);
            V::transpose(v);
            for (int k = 0; k < L; k++)
                v[k].store(mean + (column + k) * rows + t);
        }
        for (; t < rows; t++) {
            const double* p = power + static_cast<std::size_t>(spec.rowOfBin[t]) * (G * G) + column;
            for (int k = 0; k < L; k++)
                mean[(column + k) * rows + t] = p[k] * factor;
        }
    }
}

/// @param G  points of a group: the lanes of V, or a multiple
template <class V, int G>
constexpr KelpFftKernel makeFftKernel() {
    return {G, forward<V, G>, sweepPower<V, G>};
}

}  // namespace

// The transform, written once over a vector type V of lanes and compiled by each kernel for its instructions.
//
// In work memory a block of n points is n / G groups: G real parts, then G imaginary parts, each one vector or a few. A
// pass combines points n / radix apart, so that its vectors are whole lanes of neighbours and nothing is shuffled. Only
// the last sub-transforms, "tails" of G * G points, combine points of one vector: with G lanes, each turns a square of
// lanes once. Of two lanes a shuffle moves no more than an addition adds, and takes its place, while stores are to
// spare: there the last pass stores lane by lane, so that two tails lie side by side and each lane has a tail of its
// own.
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

/// a exp(-2 pi i K / 16), for the products of two numbers up to 3.
template <int K, class V>
KELP_INLINE Cplx<V> turned(Cplx<V> a) {
    constexpr double cosine = 0.92387953251128675613, sine = 0.38268343236508977173;
    const V zero = V::set(0.0), half = V::set(0.70710678118654752440);
    if constexpr (K == 1) return a * Cplx<V>{V::set(cosine), V::set(-sine)};
    if constexpr (K == 2) return {(a.re + a.im) * half, (a.im - a.re) * half};
    if constexpr (K == 3) return a * Cplx<V>{V::set(sine), V::set(-cosine)};
    if constexpr (K == 4) return {a.im, zero - a.re};
    if constexpr (K == 6) return {(a.im - a.re) * half, zero - (a.re + a.im) * half};
    if constexpr (K == 9) return a * Cplx<V>{V::set(-cosine), V::set(sine)};
    return a;
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

/// L points of a group, from its point `first` on.
template <class V, int G, bool Interleaved>
KELP_INLINE Cplx<V> loadPoints(const double* group, int first) {
    if constexpr (!Interleaved) return loadPair<G, V>(group + first);
    Cplx<V> x;
    V::loadInterleaved(group + 2 * first, x.re, x.im);
    return x;
}

template <class V>
KELP_INLINE void addPower(double* p, Cplx<V> x) {
    V::mulAdd(x.im, x.im, V::mulAdd(x.re, x.re, V::load(p))).store(p);
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
                x[k] = loadPoints<V, G, Interleaved>(src + at + k * stride, L * part);
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

/// Two tails lie side by side.
template <class V, int G>
constexpr bool isPaired = V::lanes == 2 && G == 4;

/// The last pass where tails are paired. Rows 2 r and 2 r + 1 of the result, of G * G points each, lie side by side:
/// for each point the real parts of both, then the imaginary parts.
template <class V, int G, int R, bool Interleaved>
void pairingPass(const double* src, double* dst, const double* twiddle) {
    constexpr int L = V::lanes, stride = 2 * G * G;
    for (int point = 0; point < G * G; point += L) {
        const int group = point / G * 2 * G, part = point % G;
        const double* const w = twiddle + (R - 1) * group + part;
        Cplx<V> x[R];
        unroll<R>([&](auto k)
                      KELP_INLINE_LAMBDA { x[k] = loadPoints<V, G, Interleaved>(src + group + k * stride, part); });
        butterfly<R>(x);
        unroll<R>([&](auto k) KELP_INLINE_LAMBDA {
            if constexpr (k > 0) x[k] = x[k] * loadPair<G, V>(w + (k - 1) * 2 * G);
            double* const p = dst + k / 2 * L * stride + 2 * L * point + k % 2;
            x[k].re.template storeApart<2 * L>(p);
            x[k].im.template storeApart<2 * L>(p + L);
        });
    }
}

/// `pairs` paired tails, as `tails` does them; the points come from `src` and are replaced in `dst`.
template <class V, bool Power>
void pairedTails(const double* src, double* dst, double* power, int pairs) {
    constexpr int L = V::lanes;
    for (int pair = 0; pair < pairs; pair++, src += 32 * L, dst += 32 * L, power += Power ? 16 * L : 0) {
        Cplx<V> x[4][4];
        unroll<4>([&](auto j) KELP_INLINE_LAMBDA {
            Cplx<V> y[4];
            unroll<4>([&](auto k) KELP_INLINE_LAMBDA { y[k] = loadPair<L, V>(src + (4 * k + j) * 2 * L); });
            butterfly<4>(y);
            unroll<4>([&](auto k) KELP_INLINE_LAMBDA { x[k][j] = turned<k * j>(y[k]); });
        });
        unroll<4>([&](auto k) KELP_INLINE_LAMBDA {
            butterfly<4>(x[k]);
            unroll<4>([&](auto j) KELP_INLINE_LAMBDA {
                if constexpr (Power) {
                    addPower(power + (4 * j + k) * L, x[k][j]);
                } else {
                    storePair<L>(dst + (4 * j + k) * 2 * L, x[k][j]);
                }
            });
        });
    }
}

/// The last pass and the tails behind it. Points that are not wanted as powers go to `dst`.
template <class V, int G, bool Power, bool Interleaved>
void finishPaired(int radix, const double* src, double* dst, double* power, const double* twiddle) {
    alignas(64) double pairs[8 * 2 * G * G];
    if (radix == 2) pairingPass<V, G, 2, Interleaved>(src, pairs, twiddle);
    if (radix == 4) pairingPass<V, G, 4, Interleaved>(src, pairs, twiddle);
    if (radix == 8) pairingPass<V, G, 8, Interleaved>(src, pairs, twiddle);
    pairedTails<V, Power>(pairs, dst, power, radix / 2);
}

/// The tails of n points: output k of each stands at place k. With `power` their squared magnitudes are added there;
/// else they replace the points.
template <class V, int G, bool Power>
void tails(double* x, double* power, std::size_t n, const double* twiddle) {
    static_assert(G == V::lanes);
    for (std::size_t at = 0; at < n; at += G * G) {
        Cplx<V> y[G];
        V re[G], im[G];
        unroll<G>([&](auto k) KELP_INLINE_LAMBDA { y[k] = loadPair<G, V>(x + 2 * at + k * 2 * G); });
        butterfly<G>(y);
        unroll<G - 1>([&](auto k) KELP_INLINE_LAMBDA { y[k + 1] = y[k + 1] * loadPair<G, V>(twiddle + k * 2 * G); });
        unroll<G>([&](auto k) KELP_INLINE_LAMBDA {
            re[k] = y[k].re;
            im[k] = y[k].im;
        });
        V::transpose(re);
        V::transpose(im);
        unroll<G>([&](auto k) KELP_INLINE_LAMBDA { y[k] = Cplx<V>{re[k], im[k]}; });
        butterfly<G>(y);
        unroll<G>([&](auto k) KELP_INLINE_LAMBDA {
            if constexpr (Power) {
                addPower(power + at + k * G, y[k]);
            } else {
                storePair<G>(x + 2 * at + k * 2 * G, y[k]);
            }
        });
    }
}

/// The passes from `level` on, one sub-block after the other, so that a sub-block stays in the near cache to its end.
template <class V, int G, bool Power>
void finish(const KelpsFFTSpec_C_64fc& spec, int level, double* x, double* power, std::size_t n) {
    if constexpr (isPaired<V, G>) {
        if (level + 1 == spec.passes)
            return finishPaired<V, G, Power, false>(spec.radix[level], x, x, power, spec.twiddle[level]);
    } else if (level == spec.passes) {
        return tails<V, G, Power>(x, power, n, spec.tailTwiddle);
    }
    anyPass<V, G, false>(spec.radix[level], x, x, n, spec.twiddle[level]);
    const std::size_t part = n / static_cast<std::size_t>(spec.radix[level]);
    if constexpr (!isPaired<V, G>) {
        if (level + 1 == spec.passes) return tails<V, G, Power>(x, power, n, spec.tailTwiddle);
    }
    for (std::size_t at = 0; at < n; at += part)
        finish<V, G, Power>(spec, level + 1, x + 2 * at, Power ? power + at : nullptr, part);
}

template <class V, int G, bool Power>
void transformBlock(const KelpsFFTSpec_C_64fc& spec, const double* src, double* work, double* power) {
    const std::size_t n = std::size_t{1} << spec.directOrder;
    if constexpr (isPaired<V, G>) {
        if (spec.passes == 1) return finishPaired<V, G, Power, true>(spec.radix[0], src, work, power, spec.twiddle[0]);
    }
    const std::size_t part = n / static_cast<std::size_t>(spec.radix[0]);
    anyPass<V, G, true>(spec.radix[0], src, work, n, spec.twiddle[0]);
    for (std::size_t at = 0; at < n; at += part)
        finish<V, G, Power>(spec, 1, work + 2 * at, Power ? power + at : nullptr, part);
}

/// Calls `take(point, lane, bin)` for each bin, with its point and its lane in paired memory.
template <int G, class F>
void eachPaired(const KelpsFFTSpec_C_64fc& spec, F&& take) {
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    for (std::size_t column = 0; column < G * G; column++) {
        for (std::size_t t = 0; t < rows; t++) {
            const std::size_t row = static_cast<std::size_t>(spec.rowOfBin[t]);
            take(row / 2 * (G * G) + column, row % 2, column * rows + t);
        }
    }
}

template <class V, int G>
void forward(Kelp64f* srcDst, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work) {
    constexpr int L = V::lanes;
    transformBlock<V, G, false>(spec, srcDst, work, nullptr);
    const std::size_t rows = static_cast<std::size_t>(spec.rows);
    if constexpr (isPaired<V, G>) {
        return eachPaired<G>(spec, [&](std::size_t point, std::size_t lane, std::size_t bin) {
            srcDst[2 * bin] = work[2 * L * point + lane] * spec.scale;
            srcDst[2 * bin + 1] = work[2 * L * point + L + lane] * spec.scale;
        });
    }
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
    if constexpr (isPaired<V, G>) {
        return eachPaired<G>(spec, [&](std::size_t point, std::size_t lane, std::size_t bin) {
            mean[bin] = power[L * point + lane] * factor;
        });
    }
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

/// @param G  points of a group: the lanes of V, or 4 points for two lanes
template <class V, int G>
constexpr KelpFftKernel makeFftKernel() {
    return {G, isPaired<V, G>, forward<V, G>, sweepPower<V, G>};
}

}  // namespace

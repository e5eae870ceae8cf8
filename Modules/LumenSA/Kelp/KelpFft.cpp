// Set-up of transforms in the caller's memory, and the transform of huge lengths.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "KelpKernel.h"

namespace {

constexpr std::size_t kAlignment = 64;
constexpr double kPi = 3.14159265358979323846;

/// Hands out aligned parts of one block of memory; over null it only counts.
class Arena {
public:
    explicit Arena(std::uint8_t* base) : m_base(base) {}
    template <class T>
    T* take(std::size_t count) {
        T* part = m_base ? reinterpret_cast<T*>(m_base + m_used) : nullptr;
        m_used += (count * sizeof(T) + kAlignment - 1) / kAlignment * kAlignment;
        return part;
    }
    std::size_t used() const { return m_used; }

private:
    std::uint8_t* m_base;
    std::size_t m_used = 0;
};

std::uint8_t* aligned(std::uint8_t* p) {
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    return p + (kAlignment - address % kAlignment) % kAlignment;
}

int log2Of(int powerOfTwo) {
    int bits = 0;
    while ((1 << bits) < powerOfTwo)
        bits++;
    return bits;
}

/// exp(-2 pi i k / 2^order), from sine and cosine of at most an eighth of a turn.
Kelp64fc root(std::uint64_t k, int order) {
    const std::uint64_t n = std::uint64_t{1} << order;
    k &= n - 1;
    const std::uint64_t octant = (8 * k) >> order;
    std::uint64_t within = 8 * k - octant * n;  // in eighths of a step
    if (octant & 1) within = n - within;
    // The product is carried in two parts: sin(a + b) = sin a + b cos a for a tiny b.
    const double turn = static_cast<double>(within) / (4.0 * static_cast<double>(n));
    const double angle = turn * kPi;
    const double rest = std::fma(turn, kPi, -angle) + turn * 1.2246467991473532e-16;
    double c = std::cos(angle), s = std::sin(angle);
    c -= rest * s;
    s += rest * c;
    switch (octant) {
        case 0:
            return {c, -s};
        case 1:
            return {s, -c};
        case 2:
            return {-s, -c};
        case 3:
            return {-c, -s};
        case 4:
            return {-c, s};
        case 5:
            return {-s, c};
        case 6:
            return {s, c};
        default:
            return {c, s};
    }
}

/// The factors behind a first radix-`rows` step over 2^order points: groups of `group` neighbours j, for each the
/// rows k = 1 .. rows - 1 of exp(-2 pi i j k / N).
const Kelp64f* makeTwiddles(Arena& arena, int order, int rows, int group) {
    const std::size_t columns = (std::size_t{1} << order) / static_cast<std::size_t>(rows);
    double* table = arena.take<double>(2 * columns * static_cast<std::size_t>(rows - 1));
    double* out = table;
    for (std::size_t at = 0; table && at < columns; at += static_cast<std::size_t>(group)) {
        for (int k = 1; k < rows; k++, out += 2 * group) {
            for (int lane = 0; lane < group; lane++) {
                const Kelp64fc w = root((at + static_cast<std::size_t>(lane)) * static_cast<std::size_t>(k), order);
                out[lane] = w.real();
                out[group + lane] = w.imag();
            }
        }
    }
    return table;
}

/// Splits 2^bits into radices of at most 8, as few and as even as can be, the smaller ones first.
void chooseRadices(KelpsFFTSpec_C_64fc& spec, unsigned bits) {
    spec.passes = static_cast<int>(std::max(1U, (bits + 2) / 3));
    for (int pass = 0; pass < spec.passes; pass++) {
        const unsigned share = bits / static_cast<unsigned>(spec.passes - pass);
        spec.radix[pass] = 1 << share;
        bits -= share;
    }
}

void makeRowTable(KelpsFFTSpec_C_64fc& spec, Arena& arena) {
    std::int32_t* table = arena.take<std::int32_t>(static_cast<std::size_t>(spec.rows));
    for (std::int32_t t = 0; table && t < spec.rows; t++) {
        std::int32_t row = 0, rest = t;
        for (int pass = 0; pass < spec.passes; pass++) {
            row = row * spec.radix[pass] + rest % spec.radix[pass];
            rest /= spec.radix[pass];
        }
        table[t] = row;
    }
    spec.rowOfBin = table;
}

int coarseShift(int order) {
    return order / 2;
}

void makeHugeTables(KelpsFFTSpec_C_64fc& spec, Arena& arena) {
    const int shift = coarseShift(spec.order);
    const std::size_t coarseCount = std::size_t{1} << (spec.order - 1 - shift), fineCount = std::size_t{1} << shift;
    Kelp64fc* coarse = arena.take<Kelp64fc>(coarseCount);
    Kelp64fc* fine = arena.take<Kelp64fc>(fineCount);
    for (std::size_t k = 0; coarse && k < coarseCount; k++)
        coarse[k] = root(k << shift, spec.order);
    for (std::size_t k = 0; fine && k < fineCount; k++)
        fine[k] = root(k, spec.order);
    spec.coarse = coarse;
    spec.fine = fine;
}

double forwardScale(int order, int flag) {
    if (flag == 1) return std::ldexp(1.0, -order);
    if (flag == 8) return std::sqrt(std::ldexp(1.0, -order));
    return 1.0;
}

/// Fills `spec` and its tables in the arena; over a counting arena only the sizes are worked out.
void plan(KelpsFFTSpec_C_64fc& spec, Arena& arena, const KelpKernel& kernel, int order, int flag) {
    spec = {};
    spec.kernel = &kernel;
    spec.order = order;
    spec.directOrder = order > kelpMaxDirectOrder ? kelpInnerOrder : order;
    spec.scale = forwardScale(order, flag);
    const bool isShort = spec.directOrder < 2 * log2Of(kernel.fft.group) + (kernel.fft.isPaired ? 1 : 0);
    spec.fft = isShort ? &kelpSinglePointFft : &kernel.fft;
    const int group = spec.fft->group, tailBits = 2 * log2Of(group);
    const auto headBits = static_cast<unsigned>(std::max(spec.directOrder - tailBits, 0));
    chooseRadices(spec, headBits);
    int bits = spec.directOrder;
    for (int pass = 0; pass < spec.passes; pass++) {
        spec.twiddle[pass] = makeTwiddles(arena, bits, spec.radix[pass], group);
        bits -= log2Of(spec.radix[pass]);
    }
    spec.tailTwiddle = makeTwiddles(arena, tailBits, group, group);
    spec.rows = std::int32_t{1} << headBits;
    makeRowTable(spec, arena);
    if (order != spec.directOrder) makeHugeTables(spec, arena);
}

KelpStatus checkOrderAndFlag(int order, int flag) {
    if (order < 0 || order > 27) return kelpStsFftOrderErr;
    if (flag != 1 && flag != 2 && flag != 4 && flag != 8) return kelpStsFftFlagErr;
    return kelpStsNoErr;
}

Kelp64fc times(Kelp64fc a, Kelp64fc b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

void bitReverse(Kelp64fc* x, int order) {
    const std::size_t n = std::size_t{1} << order;
    std::size_t reversed = 0;
    for (std::size_t k = 0; k < n; k++) {
        if (k < reversed) std::swap(x[k], x[reversed]);
        std::size_t bit = n >> 1;
        for (; reversed & bit; bit >>= 1)
            reversed ^= bit;
        reversed |= bit;
    }
}

/// Radix 2 in place down to blocks that the passes can do, then bit reversal: of each block, which undoes its natural
/// order, and of the whole.
void forwardHuge(Kelp64fc* x, const KelpsFFTSpec_C_64fc& spec, double* work) {
    const std::size_t n = std::size_t{1} << spec.order, inner = std::size_t{1} << spec.directOrder;
    const int shift = coarseShift(spec.order);
    const std::size_t fineMask = (std::size_t{1} << shift) - 1;
    for (std::size_t length = n; length > inner; length /= 2) {
        const std::size_t half = length / 2, step = n / length;
        for (Kelp64fc* block = x; block != x + n; block += length) {
            for (std::size_t j = 0; j < half; j++) {
                const Kelp64fc w = times(spec.coarse[(j * step) >> shift], spec.fine[(j * step) & fineMask]);
                const Kelp64fc difference = block[j] - block[j + half];
                block[j] += block[j + half];
                block[j + half] = times(difference, w);
            }
        }
    }
    for (Kelp64fc* block = x; block != x + n; block += inner) {
        spec.fft->forward(reinterpret_cast<double*>(block), spec, work);
        bitReverse(block, spec.directOrder);
    }
    bitReverse(x, spec.order);
}

}  // namespace

KelpStatus kelpsFFTGetSize_C_64fc(int order, int flag, int, std::int32_t* specSize, std::int32_t* specBufferSize,
                                  std::int32_t* workBufferSize) {
    if (!specSize || !specBufferSize || !workBufferSize) return kelpStsNullPtrErr;
    const KelpStatus status = checkOrderAndFlag(order, flag);
    if (status != kelpStsNoErr) return status;
    std::size_t size = 0, directOrder = 0;
    for (const KelpKernel* const* kernel = kelpUsableKernels(); *kernel; kernel++) {
        KelpsFFTSpec_C_64fc spec;
        Arena arena(nullptr);
        arena.take<KelpsFFTSpec_C_64fc>(1);
        plan(spec, arena, **kernel, order, flag);
        size = std::max(size, arena.used());
        directOrder = static_cast<std::size_t>(spec.directOrder);
    }
    // Work memory: one block, and the sums of powers.
    *specSize = static_cast<std::int32_t>(size + kAlignment);
    *specBufferSize = 0;
    *workBufferSize = static_cast<std::int32_t>(3 * sizeof(double) * (std::size_t{1} << directOrder) + kAlignment);
    return kelpStsNoErr;
}

KelpStatus kelpsFFTInit_C_64fc(KelpsFFTSpec_C_64fc** spec, int order, int flag, int, std::uint8_t* specMemory,
                               std::uint8_t*) {
    if (!spec || !specMemory) return kelpStsNullPtrErr;
    const KelpStatus status = checkOrderAndFlag(order, flag);
    if (status != kelpStsNoErr) return status;
    Arena arena(aligned(specMemory));
    KelpsFFTSpec_C_64fc* made = new (arena.take<KelpsFFTSpec_C_64fc>(1)) KelpsFFTSpec_C_64fc;
    plan(*made, arena, kelpActiveKernel(), order, flag);
    *spec = made;
    return kelpStsNoErr;
}

KelpStatus kelpsFFTFwd_CToC_64fc_I(Kelp64fc* srcDst, const KelpsFFTSpec_C_64fc* spec, std::uint8_t* buffer) {
    if (!srcDst || !spec || !buffer) return kelpStsNullPtrErr;
    double* work = reinterpret_cast<double*>(aligned(buffer));
    if (spec->order != spec->directOrder) {
        forwardHuge(srcDst, *spec, work);
    } else {
        spec->fft->forward(reinterpret_cast<double*>(srcDst), *spec, work);
    }
    return kelpStsNoErr;
}

KelpStatus kelpsSweepPower_64fc(const Kelp64fc* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc* spec,
                                std::uint8_t* work) {
    if (!sweep || !mean || !spec || !work) return kelpStsNullPtrErr;
    if (blocks <= 0) return kelpStsSizeErr;
    if (spec->order != spec->directOrder) return kelpStsFftOrderErr;
    spec->fft->sweepPower(reinterpret_cast<const double*>(sweep), blocks, mean, *spec,
                          reinterpret_cast<double*>(aligned(work)));
    return kelpStsNoErr;
}

const char* kelpsFFTKernelName(const KelpsFFTSpec_C_64fc* spec) {
    return spec ? spec->kernel->name : nullptr;
}

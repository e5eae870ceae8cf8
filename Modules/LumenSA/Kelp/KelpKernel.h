// What one kernel offers, and the plan of a transform that it runs. Lengths are checked by the callers in Kelp.cpp and
// KelpFft.cpp; a kernel gets positive lengths and pointers that aren't null.
#pragma once

#include "Kelp.h"

constexpr int kelpMaxPasses = 8;
/// Orders above run in place around transforms of order kelpInnerOrder; see KelpFft.cpp.
constexpr int kelpMaxDirectOrder = 22;
constexpr int kelpInnerOrder = 16;

/// The transforms of one vector width. The last sub-transforms are group * group points long, so shorter lengths need
/// smaller groups.
struct KelpFftKernel {
    int group;
    bool isPaired;  ///< two of the last sub-transforms lie side by side, so there must be two
    /// Natural order in place, scaled by `spec.scale`. `work` holds 2 N doubles.
    void (*forward)(Kelp64f* srcDst, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work);
    /// `work` holds 3 N doubles.
    void (*sweepPower)(const Kelp64f* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc& spec, Kelp64f* work);
};

struct KelpKernel {
    const char* name;
    KelpFftKernel fft;
    /// True when a zero was among the values.
    bool (*log10)(const Kelp64f* src, Kelp64f* dst, int length);
    void (*magnitude)(const Kelp64f* src, Kelp64f* dst, int length);
    void (*minMax)(const Kelp64f* src, int length, Kelp64f* min, Kelp64f* max);
    void (*cplxToReal)(const Kelp64f* src, Kelp64f* re, Kelp64f* im, int length);
    void (*convert16s)(const Kelp16s* src, Kelp64f* dst, int length, Kelp64f factor);
    void (*truncInterleave)(const Kelp64f* i, const Kelp64f* q, Kelp16s* iq, int length);
    void (*sumPairs)(const Kelp16s* iq, int length, Kelp64f* sumI, Kelp64f* sumQ);
    void (*subPairs)(Kelp16s i, Kelp16s q, Kelp16s* srcDst, int length);
    void (*fanOut)(const Kelp16s* iq, Kelp64f* cplx, Kelp64f* i, Kelp64f* q, int length);
};

/// A transform of N points: decimation in frequency by radix[0], radix[1], ..., each in place, until sub-transforms of
/// group * group points are left. They end in order within, so that row s of the work memory, read as a matrix of
/// `rows` rows, holds the bins t, t + rows, t + 2 rows, ... where rowOfBin[t] = s. Paired rows lie point by point
/// beside each other.
struct KelpsFFTSpec_C_64fc {
    const KelpKernel* kernel;  ///< The kernel chosen at the set-up.
    const KelpFftKernel* fft;  ///< Its transforms, or those of single points for a short length.
    int order;                 ///< Of the transform as the caller sees it.
    int directOrder;           ///< Of the transform that the passes do; smaller than `order` for a huge one.
    Kelp64f scale;             ///< Factor of the forward direction.
    int passes;
    int radix[kelpMaxPasses];
    const Kelp64f* twiddle[kelpMaxPasses];  ///< Of each pass, in the order of use: vectors of re, then of im.
    const Kelp64f* tailTwiddle;             ///< Of the last sub-transforms, same form; unless paired.
    std::int32_t rows;
    const std::int32_t* rowOfBin;
    const Kelp64fc* coarse;  ///< Huge transforms only: exp(-2 pi i k 2^h / N) and, behind, exp(-2 pi i k / N).
    const Kelp64fc* fine;
};

/// One point at a time, for lengths that are too short for groups.
extern const KelpFftKernel kelpSinglePointFft;
extern const KelpKernel kelpPortableKernel;
#if defined(__x86_64__) || defined(_M_X64)
#define KELP_X86 1
extern const KelpKernel kelpAvx2Kernel;
extern const KelpKernel kelpAvx512Kernel;
#endif

const KelpKernel& kelpActiveKernel();
/// Best first, ended by null.
const KelpKernel* const* kelpUsableKernels();

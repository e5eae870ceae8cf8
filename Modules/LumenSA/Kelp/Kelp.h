// Vector primitives of the spectrum engine: plain pointers and lengths in, a status out. No state but the kernel chosen
// by kelpInit, no logging. Every vector function answers kelpStsNullPtrErr for a null pointer and kelpStsSizeErr for a
// length that is not positive, and does nothing then.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

using Kelp64f = double;
using Kelp64fc = std::complex<double>;
using Kelp16s = std::int16_t;
using Kelp32s = std::int32_t;
/// 0 is success, negative an error, positive a warning.
using KelpStatus = std::int32_t;
struct KelpsFFTSpec_C_64fc;

constexpr KelpStatus kelpStsNoErr = 0;
constexpr KelpStatus kelpStsSingularity = 18;
constexpr KelpStatus kelpStsSizeErr = -6;
constexpr KelpStatus kelpStsNullPtrErr = -8;
constexpr KelpStatus kelpStsFftOrderErr = -17;
constexpr KelpStatus kelpStsFftFlagErr = -18;
constexpr KelpStatus kelpStsUnknownStatusCodeErr = -216;
/// kelpInit only: TARN_KERNEL names a kernel that is unknown or that this processor lacks.
constexpr KelpStatus kelpStsKernelErr = -300;

/// The largest finite double.
constexpr Kelp64f KELP_MAXABS_64F = 1.7976931348623157e308;

/// Chooses the kernel by what the processor has, or by the environment variable TARN_KERNEL.
/// @return below 0 when the module can't run, such as a forced kernel that this processor lacks
KelpStatus kelpInit();
/// Name of the kernel in use: "portable", "avx2" or "avx512".
const char* kelpKernelName();
/// Names of the kernels that this processor can run, best first, ended by null.
const char* const* kelpKernelNames();
/// Forces a kernel by name, over TARN_KERNEL and later calls of kelpInit; null ends that. False, and nothing changed,
/// when the kernel is unknown or this processor lacks it.
bool kelpForceKernel(const char* name);

/// `length` bytes aligned to 64, or null.
void* kelpMalloc(std::int32_t length);
void kelpsFree(void* p);

/// Sizes in bytes for 2 to the power `order` complex points, order 0 to 27. The init buffer may be null or any memory:
/// the set-up leaves it alone. Work memory needs no alignment of the caller's; 64 bytes is best.
/// From order 23 up the transform works in place and slower, with small memory.
KelpStatus kelpsFFTGetSize_C_64fc(int order, int flag, int hint, std::int32_t* specSize, std::int32_t* specBufferSize,
                                  std::int32_t* workBufferSize);
KelpStatus kelpsFFTInit_C_64fc(KelpsFFTSpec_C_64fc** spec, int order, int flag, int hint, std::uint8_t* specMemory,
                               std::uint8_t* initBuffer);
/// In place, natural order in and out; exp(-2 pi i k n / N). Flag 1: divided by N; 8: by the root of N; 2 and 4: as is.
KelpStatus kelpsFFTFwd_CToC_64fc_I(Kelp64fc* srcDst, const KelpsFFTSpec_C_64fc* spec, std::uint8_t* buffer);
KelpStatus kelpsMagnitude_64fc(const Kelp64fc* src, Kelp64f* dst, int length);
KelpStatus kelpsSqr_64f_I(Kelp64f* srcDst, int length);
KelpStatus kelpsCopy_64f(const Kelp64f* src, Kelp64f* dst, int length);
KelpStatus kelpsCopy_64fc(const Kelp64fc* src, Kelp64fc* dst, int length);
/// Error below one unit in the last place; powers of ten are exact. Zero: minus infinity, and kelpStsSingularity at the
/// end. Negative or not a number: not a number.
KelpStatus kelpsLog10_64f_A53(const Kelp64f* src, Kelp64f* dst, int length);
KelpStatus kelpsMulC_64f(const Kelp64f* src, Kelp64f value, Kelp64f* dst, int length);
KelpStatus kelpsSubC_64f_I(Kelp64f value, Kelp64f* srcDst, int length);
/// Significant bits of the largest absolute value: 0 for zeros, 12 for 4095, 13 for 4096, 32 for -2^31.
KelpStatus kelpsMaxOrder_32s(const Kelp32s* src, int length, int* order);
/// Passes over what is not a number; infinity and minus infinity when nothing else is there.
KelpStatus kelpsMinMax_64f(const Kelp64f* src, int length, Kelp64f* min, Kelp64f* max);
KelpStatus kelpsZero_64f(Kelp64f* dst, int length);
KelpStatus kelpsSet_64f(Kelp64f value, Kelp64f* dst, int length);
/// dst = src * 2^-scaleFactor.
KelpStatus kelpsConvert_16s64f_Sfs(const Kelp16s* src, Kelp64f* dst, int length, int scaleFactor);
KelpStatus kelpsCplxToReal_64fc(const Kelp64fc* src, Kelp64f* re, Kelp64f* im, int length);
const char* kelpGetStatusString(KelpStatus status);

/// Fused form of a sweep's transforms: mean over the whole blocks of |FFT(block) / N|^2, in transform order, DC first.
/// Agrees with the primitives above to 1e-12 of the largest value.
/// @param sweep   `blocks` times N complex samples
/// @param mean    N linear powers
/// @param work    the work buffer of kelpsFFTGetSize_C_64fc
/// @return kelpStsFftOrderErr above order 22, where the work buffer can't hold a block
KelpStatus kelpsSweepPower_64fc(const Kelp64fc* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc* spec,
                                std::uint8_t* work);
/// Name of the kernel that `spec` was set up for: a specification keeps its kernel when another is forced later.
const char* kelpsFFTKernelName(const KelpsFFTSpec_C_64fc* spec);

// Intake of a sweep. `iq` holds `length` pairs I, Q.

/// Cuts each value toward zero and keeps the low 16 bits; 0 for a value that isn't finite or is 2^63 or more in size.
KelpStatus kelpsTruncInterleave_64f16s(const Kelp64f* i, const Kelp64f* q, Kelp16s* iq, int length);
/// Index of the last pair with a part that isn't zero, -1 when there is none.
KelpStatus kelpsLastNonZeroPair_16s(const Kelp16s* iq, int length, int* index);
/// Exact sums of all I and of all Q.
KelpStatus kelpsSumPairs_16s64f(const Kelp16s* iq, int length, Kelp64f* sumI, Kelp64f* sumQ);
/// Subtracts `i` from every I and `q` from every Q, wrapping at 16 bits.
KelpStatus kelpsSubCPairs_16s_I(Kelp16s i, Kelp16s q, Kelp16s* srcDst, int length);
/// Writes the pairs three times over: as complex numbers, as I and as Q.
KelpStatus kelpsFanOut_16s64f(const Kelp16s* iq, Kelp64fc* cplx, Kelp64f* i, Kelp64f* q, int length);

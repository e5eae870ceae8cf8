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

/// The largest finite double.
constexpr Kelp64f KELP_MAXABS_64F = 1.7976931348623157e308;

/// Chooses the kernel by what the processor has, or by the environment variable TARN_KERNEL.
/// @return below 0 when the module can't run, such as a forced kernel that this processor lacks
KelpStatus kelpInit();
/// Name of the kernel in use: "portable", "avx2" or "avx512".
const char* kelpKernelName();
/// Names of the kernels that this processor can run, best first, ended by null.
const char* const* kelpKernelNames();
/// Forces a kernel by name; false when it is unknown or this processor lacks it.
bool kelpForceKernel(const char* name);

/// `length` bytes aligned to 64, or null.
void* kelpMalloc(std::int32_t length);
void kelpsFree(void* p);

KelpStatus kelpsFFTGetSize_C_64fc(int order, int flag, int hint, std::int32_t* specSize, std::int32_t* specBufferSize,
                                  std::int32_t* workBufferSize);
KelpStatus kelpsFFTInit_C_64fc(KelpsFFTSpec_C_64fc** spec, int order, int flag, int hint, std::uint8_t* specMemory,
                               std::uint8_t* initBuffer);
/// In place, natural order in and out. Flag 1: divided by the length.
KelpStatus kelpsFFTFwd_CToC_64fc_I(Kelp64fc* srcDst, const KelpsFFTSpec_C_64fc* spec, std::uint8_t* buffer);
KelpStatus kelpsMagnitude_64fc(const Kelp64fc* src, Kelp64f* dst, int length);
KelpStatus kelpsSqr_64f_I(Kelp64f* srcDst, int length);
KelpStatus kelpsCopy_64f(const Kelp64f* src, Kelp64f* dst, int length);
KelpStatus kelpsCopy_64fc(const Kelp64fc* src, Kelp64fc* dst, int length);
KelpStatus kelpsLog10_64f_A53(const Kelp64f* src, Kelp64f* dst, int length);
KelpStatus kelpsMulC_64f(const Kelp64f* src, Kelp64f value, Kelp64f* dst, int length);
KelpStatus kelpsSubC_64f_I(Kelp64f value, Kelp64f* srcDst, int length);
KelpStatus kelpsMaxOrder_32s(const Kelp32s* src, int length, int* order);
KelpStatus kelpsMinMax_64f(const Kelp64f* src, int length, Kelp64f* min, Kelp64f* max);
KelpStatus kelpsZero_64f(Kelp64f* dst, int length);
KelpStatus kelpsSet_64f(Kelp64f value, Kelp64f* dst, int length);
KelpStatus kelpsConvert_16s64f_Sfs(const Kelp16s* src, Kelp64f* dst, int length, int scaleFactor);
KelpStatus kelpsCplxToReal_64fc(const Kelp64fc* src, Kelp64f* re, Kelp64f* im, int length);
const char* kelpGetStatusString(KelpStatus status);

/// Fused form of a sweep's transforms: mean over the whole blocks of |FFT(block) / N|^2, in transform order, DC first.
/// Agrees with the primitives above to 1e-12 of the largest value.
/// @param sweep   `blocks` times N complex samples
/// @param mean    N linear powers
/// @param work    the work buffer of kelpsFFTGetSize_C_64fc
KelpStatus kelpsSweepPower_64fc(const Kelp64fc* sweep, int blocks, Kelp64f* mean, const KelpsFFTSpec_C_64fc* spec,
                                std::uint8_t* work);

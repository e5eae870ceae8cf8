// The kernel for x86 processors with AVX2 and FMA: four doubles a vector. The instructions are switched on for
// this file's own functions only, behind the headers, so that no shared inline function is compiled with them.
#include "KelpKernel.h"
#if KELP_X86
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma"))), apply_to = function)
#elif defined(__GNUC__)
#pragma GCC push_options
#pragma GCC target("avx2,fma")
#endif

#include "KelpVectorKernel.h"

constinit const KelpKernel kelpAvx2Kernel = makeKernel<Lanes<4>, 4>("avx2");

#if defined(__clang__)
#pragma clang attribute pop
#elif defined(__GNUC__)
#pragma GCC pop_options
#endif
#endif

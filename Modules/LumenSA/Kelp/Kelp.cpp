// Choice of the kernel, memory, statuses, and the checks before each primitive.
#include "Kelp.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

#include "KelpKernel.h"

namespace {

constexpr int kMaxKernels = 3;

struct KernelList {
    const KelpKernel* kernels[kMaxKernels + 1] = {};
    const char* names[kMaxKernels + 1] = {};
};

/// The processor's features as the operating system allows them.
KernelList findKernels() {
    KernelList list;
    int count = 0;
#if KELP_X86 && defined(__GNUC__)
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq");
    if (avx512) list.kernels[count++] = &kelpAvx512Kernel;
    if (avx2) list.kernels[count++] = &kelpAvx2Kernel;
#endif
    list.kernels[count] = &kelpPortableKernel;
    for (int k = 0; list.kernels[k]; k++)
        list.names[k] = list.kernels[k]->name;
    return list;
}

const KernelList& usable() {
    static const KernelList list = findKernels();
    return list;
}

const KelpKernel* findKernel(const char* name) {
    for (const KelpKernel* const* kernel = usable().kernels; *kernel; kernel++)
        if (std::strcmp((*kernel)->name, name) == 0) return *kernel;
    return nullptr;
}

std::atomic<const KelpKernel*> g_chosen{nullptr}, g_forced{nullptr};

struct StatusText {
    KelpStatus status;
    const char* text;
};

constexpr StatusText kStatusTexts[] = {
    {kelpStsNoErr, "kelpStsNoErr: No errors"},
    {kelpStsSingularity, "kelpStsSingularity: Zero argument of a logarithm"},
    {kelpStsSizeErr, "kelpStsSizeErr: Incorrect value for data size"},
    {kelpStsNullPtrErr, "kelpStsNullPtrErr: Null pointer error"},
    {kelpStsFftOrderErr, "kelpStsFftOrderErr: Incorrect value for FFT order"},
    {kelpStsFftFlagErr, "kelpStsFftFlagErr: Incorrect value for FFT flag"},
    {kelpStsKernelErr, "kelpStsKernelErr: The kernel asked for is unknown or the processor lacks it"},
    {kelpStsUnknownStatusCodeErr, "kelpStsUnknownStatusCodeErr: Unknown status code"},
};

template <class... Pointers>
KelpStatus check(int length, const Pointers*... pointers) {
    if ((!pointers || ...)) return kelpStsNullPtrErr;
    return length <= 0 ? kelpStsSizeErr : kelpStsNoErr;
}

const double* parts(const Kelp64fc* x) {
    return reinterpret_cast<const double*>(x);
}

/// Runs `body` when the arguments are good.
template <class Body, class... Pointers>
KelpStatus checked(Body body, int length, const Pointers*... pointers) {
    const KelpStatus status = check(length, pointers...);
    if (status == kelpStsNoErr) body();
    return status;
}

}  // namespace

const KelpKernel* const* kelpUsableKernels() {
    return usable().kernels;
}

const KelpKernel& kelpActiveKernel() {
    if (const KelpKernel* forced = g_forced) return *forced;
    if (const KelpKernel* chosen = g_chosen) return *chosen;
    return *usable().kernels[0];
}

KelpStatus kelpInit() {
    const char* name = std::getenv("TARN_KERNEL");
    const KelpKernel* kernel = name && *name ? findKernel(name) : usable().kernels[0];
    if (!kernel) return kelpStsKernelErr;
    g_chosen = kernel;
    return kelpStsNoErr;
}

const char* kelpKernelName() {
    return kelpActiveKernel().name;
}

const char* const* kelpKernelNames() {
    return usable().names;
}

bool kelpForceKernel(const char* name) {
    const KelpKernel* kernel = name ? findKernel(name) : nullptr;
    if (name && !kernel) return false;
    g_forced = kernel;
    return true;
}

void* kelpMalloc(std::int32_t length) {
    if (length <= 0) return nullptr;
    return ::operator new (static_cast<std::size_t>(length), std::align_val_t{64}, std::nothrow);
}

void kelpsFree(void* p) {
    ::operator delete (p, std::align_val_t{64});
}

KelpStatus kelpsMagnitude_64fc(const Kelp64fc* src, Kelp64f* dst, int length) {
    return checked([&] { kelpActiveKernel().magnitude(parts(src), dst, length); }, length, src, dst);
}

KelpStatus kelpsSqr_64f_I(Kelp64f* srcDst, int length) {
    return checked([&] { std::transform(srcDst, srcDst + length, srcDst, [](double x) { return x * x; }); }, length,
                   srcDst);
}

KelpStatus kelpsCopy_64f(const Kelp64f* src, Kelp64f* dst, int length) {
    return checked([&] { std::memmove(dst, src, static_cast<std::size_t>(length) * sizeof *dst); }, length, src, dst);
}

KelpStatus kelpsCopy_64fc(const Kelp64fc* src, Kelp64fc* dst, int length) {
    const std::size_t bytes = static_cast<std::size_t>(length) * sizeof *dst;
    return checked([&] { std::memmove(static_cast<void*>(dst), src, bytes); }, length, src, dst);
}

KelpStatus kelpsLog10_64f_A53(const Kelp64f* src, Kelp64f* dst, int length) {
    const KelpStatus status = check(length, src, dst);
    if (status != kelpStsNoErr) return status;
    return kelpActiveKernel().log10(src, dst, length) ? kelpStsSingularity : kelpStsNoErr;
}

KelpStatus kelpsMulC_64f(const Kelp64f* src, Kelp64f value, Kelp64f* dst, int length) {
    return checked([&] { std::transform(src, src + length, dst, [=](double x) { return x * value; }); }, length, src,
                   dst);
}

KelpStatus kelpsSubC_64f_I(Kelp64f value, Kelp64f* srcDst, int length) {
    return checked([&] { std::transform(srcDst, srcDst + length, srcDst, [=](double x) { return x - value; }); },
                   length, srcDst);
}

KelpStatus kelpsMaxOrder_32s(const Kelp32s* src, int length, int* order) {
    const auto orOfSizes = [&] {
        std::uint32_t bits = 0;
        for (int k = 0; k < length; k++) {
            const auto x = static_cast<std::uint32_t>(src[k]);
            bits |= src[k] < 0 ? 0u - x : x;
        }
        *order = static_cast<int>(std::bit_width(bits));
    };
    return checked(orOfSizes, length, src, order);
}

KelpStatus kelpsMinMax_64f(const Kelp64f* src, int length, Kelp64f* min, Kelp64f* max) {
    return checked([&] { kelpActiveKernel().minMax(src, length, min, max); }, length, src, min, max);
}

KelpStatus kelpsZero_64f(Kelp64f* dst, int length) {
    return kelpsSet_64f(0.0, dst, length);
}

KelpStatus kelpsSet_64f(Kelp64f value, Kelp64f* dst, int length) {
    return checked([&] { std::fill_n(dst, length, value); }, length, dst);
}

KelpStatus kelpsConvert_16s64f_Sfs(const Kelp16s* src, Kelp64f* dst, int length, int scaleFactor) {
    // The range in which the factor is a finite double that is not zero.
    const double factor = std::ldexp(1.0, -std::clamp(scaleFactor, -1023, 1074));
    return checked([&] { kelpActiveKernel().convert16s(src, dst, length, factor); }, length, src, dst);
}

KelpStatus kelpsCplxToReal_64fc(const Kelp64fc* src, Kelp64f* re, Kelp64f* im, int length) {
    return checked([&] { kelpActiveKernel().cplxToReal(parts(src), re, im, length); }, length, src, re, im);
}

KelpStatus kelpsTruncInterleave_64f16s(const Kelp64f* i, const Kelp64f* q, Kelp16s* iq, int length) {
    return checked([&] { kelpActiveKernel().truncInterleave(i, q, iq, length); }, length, i, q, iq);
}

KelpStatus kelpsLastNonZeroPair_16s(const Kelp16s* iq, int length, int* index) {
    const auto search = [&] {
        std::ptrdiff_t k = length;
        while (k > 0 && iq[2 * k - 2] == 0 && iq[2 * k - 1] == 0)
            k--;
        *index = static_cast<int>(k - 1);
    };
    return checked(search, length, iq, index);
}

KelpStatus kelpsSumPairs_16s64f(const Kelp16s* iq, int length, Kelp64f* sumI, Kelp64f* sumQ) {
    return checked([&] { kelpActiveKernel().sumPairs(iq, length, sumI, sumQ); }, length, iq, sumI, sumQ);
}

KelpStatus kelpsSubCPairs_16s_I(Kelp16s i, Kelp16s q, Kelp16s* srcDst, int length) {
    return checked([&] { kelpActiveKernel().subPairs(i, q, srcDst, length); }, length, srcDst);
}

KelpStatus kelpsFanOut_16s64f(const Kelp16s* iq, Kelp64fc* cplx, Kelp64f* i, Kelp64f* q, int length) {
    double* pairs = reinterpret_cast<double*>(cplx);
    return checked([&] { kelpActiveKernel().fanOut(iq, pairs, i, q, length); }, length, iq, cplx, i, q);
}

const char* kelpGetStatusString(KelpStatus status) {
    for (const StatusText& entry : kStatusTexts)
        if (entry.status == status) return entry.text;
    return kelpGetStatusString(kelpStsUnknownStatusCodeErr);
}

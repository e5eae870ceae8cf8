// The kernel for every processor: two doubles a vector, which 64-bit x86 and ARM always have.
#include "KelpVectorKernel.h"

namespace {

/// The same operations on one double, as far as the transform needs them.
struct Single {
    static constexpr int lanes = 1;
    double v;

    static KELP_INLINE Single load(const double* p) { return {*p}; }
    static KELP_INLINE Single set(double x) { return {x}; }
    KELP_INLINE void store(double* p) const { *p = v; }
    static KELP_INLINE void loadInterleaved(const double* p, Single& re, Single& im) {
        re.v = p[0];
        im.v = p[1];
    }
    static KELP_INLINE void storeInterleaved(double* p, Single re, Single im) {
        p[0] = re.v;
        p[1] = im.v;
    }
    static KELP_INLINE void transpose(Single*) {}
    KELP_INLINE Single operator+(Single b) const { return {v + b.v}; }
    KELP_INLINE Single operator-(Single b) const { return {v - b.v}; }
    KELP_INLINE Single operator*(Single b) const { return {v * b.v}; }
    static KELP_INLINE Single mulAdd(Single a, Single b, Single c) { return {a.v * b.v + c.v}; }
    static KELP_INLINE Single mulSub(Single a, Single b, Single c) { return {a.v * b.v - c.v}; }
    static KELP_INLINE Single subMul(Single c, Single a, Single b) { return {c.v - a.v * b.v}; }
};

}  // namespace

constinit const KelpFftKernel kelpSinglePointFft = makeFftKernel<Single, 1>();
constinit const KelpKernel kelpPortableKernel = makeKernel<Lanes<2>, 4>("portable");

// The hot path takes no memory, and memory that runs out leaves an engine that can go on. A sanitizer watches operator
// new by itself, so this test is not part of such a build.
#ifndef TARN_SANITIZED

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "EngineHelp.h"

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t failing = 0;  ///< number of the allocation that fails; 0 for none

void* Counted(std::size_t size, std::size_t alignment) {
    if (++allocations == failing) throw std::bad_alloc();
    size = (size + alignment - 1) / alignment * alignment;
    if (void* const p = std::aligned_alloc(alignment, size ? size : alignment)) return p;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return Counted(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return Counted(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}

namespace {

TEST(Allocation, TheComputationAllocatesNothing) {
    CLmnSA engine;
    Tune(engine, 80, 78.125, 80);
    for (int property = 0; property < 5; ++property)
        engine.SetProperty(static_cast<LmnSAProperty>(property), true);
    const Codes codes = ToneSweep(1000, 100, 98304);
    codes.AddTo(engine);
    const std::size_t before = allocations;
    engine.UpdateFromLastSweep();
    EXPECT_EQ(allocations, before);
    for (const bool rebuild : {false, true}) {
        engine.m_isInit = rebuild;
        codes.AddTo(engine);
        EXPECT_EQ(allocations, before) << "buffers keep their memory, rebuilt " << rebuild;
    }
}

TEST(Allocation, MemoryThatRunsOutAnywhereInARebuildReleasesAllAndTheNextSweepRecovers) {
    for (const bool rebuild : {true, false}) {  // else the sweep buffers just grow
        std::size_t failures = 0;
        for (bool failed = true; failed; failures += failed) {
            CLmnSA engine;
            Tune(engine, 40, 312.5, 20);
            ToneSweep(100, 5, 256).AddTo(engine);
            if (rebuild) Tune(engine, 40, 39.0625, 20);
            const Codes codes = ToneSweep(100, 5, 4096);
            failing = allocations + failures + 1;
            failed = false;
            try {
                codes.AddTo(engine);
            } catch (Utilities::Exception* error) {
                delete error;
                failed = true;
                EXPECT_TRUE(engine.m_isInit);
                EXPECT_TRUE(!engine.m_Spectrum[0]->val && !engine.m_MaxHold[0] && !engine.m_pTmp1);
            } catch (const std::bad_alloc&) {  // of the 16-bit records, before anything else changed
                failed = true;
                EXPECT_NE(engine.m_Spectrum[0]->val, nullptr);
            }
            failing = 0;
            Measure(engine, codes);
            EXPECT_NEAR(At(engine, static_cast<int>(5 * engine.m_NumOfBins / 128)), 40.0, 0.01) << failures;
        }
        EXPECT_GT(failures, rebuild ? 15u : 7u);
    }
}

}  // namespace

#endif

// What the tests of the vector primitives share: a fixture that runs a test once for each kernel of this processor.
#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Kelp.h"

using Complexes = std::vector<Kelp64fc>;
using Reals = std::vector<double>;

struct KelpFree {
    void operator()(std::uint8_t* p) const { kelpsFree(p); }
};

/// A specification with its memory, which starts `misalignment` bytes behind an aligned address.
struct Transform {
    explicit Transform(int order, int flag = 1, int misalignment = 0) : length(std::size_t{1} << order) {
        std::int32_t sizes[3] = {};
        EXPECT_EQ(kelpStsNoErr, kelpsFFTGetSize_C_64fc(order, flag, 0, &sizes[0], &sizes[1], &sizes[2]));
        memory.reset(static_cast<std::uint8_t*>(kelpMalloc(sizes[0] + misalignment)));
        workMemory.reset(static_cast<std::uint8_t*>(kelpMalloc(sizes[2] + misalignment)));
        work = workMemory.get() + misalignment;
        EXPECT_EQ(kelpStsNoErr, kelpsFFTInit_C_64fc(&spec, order, flag, 0, memory.get() + misalignment, work));
    }
    Complexes forward(Complexes x) const {
        EXPECT_EQ(kelpStsNoErr, kelpsFFTFwd_CToC_64fc_I(x.data(), spec, work));
        return x;
    }
    Reals sweepPower(const Kelp64fc* sweep, int blocks) const {
        Reals mean(length, -1.0);
        EXPECT_EQ(kelpStsNoErr, kelpsSweepPower_64fc(sweep, blocks, mean.data(), spec, work));
        return mean;
    }
    std::size_t length;
    std::unique_ptr<std::uint8_t, KelpFree> memory, workMemory;
    std::uint8_t* work;
    KelpsFFTSpec_C_64fc* spec = nullptr;
};

inline Complexes noise(std::size_t length, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> code(-2048.0, 2047.0);
    Complexes x(length);
    for (auto& value : x)
        value = {code(generator), code(generator)};
    return x;
}

class EachKernel : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { ASSERT_TRUE(kelpForceKernel(GetParam())); }
    void TearDown() override { kelpForceKernel(nullptr); }
};

inline std::vector<const char*> kernelNames() {
    std::vector<const char*> names;
    for (const char* const* name = kelpKernelNames(); *name; name++)
        names.push_back(*name);
    return names;
}

inline std::string nameOf(const testing::TestParamInfo<const char*>& info) {
    return info.param;
}

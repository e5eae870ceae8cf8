#include <algorithm>
#include <cmath>

#include "KelpTesting.h"

namespace {

using Long = std::complex<long double>;
constexpr long double kPi = 3.141592653589793238462643383279502884L;

Long turn(std::uint64_t numerator, std::uint64_t length) {
    const long double angle =
        2.0L * kPi * static_cast<long double>(numerator % length) / static_cast<long double>(length);
    return {std::cos(angle), -std::sin(angle)};
}

/// The sum of the definition, undivided.
std::vector<Long> directTransform(const Kelp64fc* x, std::size_t length) {
    std::vector<Long> roots(length), result(length);
    for (std::size_t k = 0; k < length; k++)
        roots[k] = turn(k, length);
    for (std::size_t k = 0; k < length; k++)
        for (std::size_t n = 0; n < length; n++)
            result[k] += Long(x[n]) * roots[k * n % length];
    return result;
}

double largestOf(const Reals& x) {
    return *std::max_element(x.begin(), x.end());
}

class TransformOfEachKernel : public EachKernel {};
INSTANTIATE_TEST_SUITE_P(Kernels, TransformOfEachKernel, testing::ValuesIn(kernelNames()), nameOf);

TEST_P(TransformOfEachKernel, agrees_with_the_direct_sum_and_divides_as_its_flag_says) {
    for (const int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}) {
        const std::size_t length = std::size_t{1} << order;
        const Complexes x = noise(length, 7u + static_cast<unsigned>(order));
        const std::vector<Long> sum = directTransform(x.data(), length);
        long double largest = 0.0L;
        for (const Long& value : sum)
            largest = std::max(largest, std::abs(value));
        const long double root = std::sqrt(static_cast<long double>(length));
        for (const auto& [flag, divisor] : {std::pair{1, root * root}, {2, 1.0L}, {4, 1.0L}, {8, root}}) {
            const Complexes y = Transform(order, flag, 8 * (flag - 1)).forward(x);
            const long double bound = 1e-15L * std::sqrt(order + 1.0L) * largest / divisor;
            for (std::size_t k = 0; k < length; k++)
                ASSERT_TRUE(std::abs(Long(y[k]) - sum[k] / divisor) <= bound)
                    << order << " flag " << flag << " bin " << k;
        }
    }
}

TEST_P(TransformOfEachKernel, puts_tones_impulses_and_constants_of_long_blocks_where_they_belong) {
    for (const int order : {12, 13, 15, 18}) {
        const Transform transform(order);
        const std::size_t length = transform.length, place = length / 3;
        const double n = static_cast<double>(length);
        Complexes tone(length), impulse(length), constant(length, 1.0);
        for (std::size_t k = 0; k < length; k++)
            tone[k] = Kelp64fc(std::conj(turn(k * place, length)));
        impulse[place] = n;
        tone = transform.forward(tone);
        impulse = transform.forward(impulse);
        constant = transform.forward(constant);
        for (std::size_t k = 0; k < length; k++) {
            ASSERT_TRUE(std::abs(tone[k] - (k == place ? 1.0 : 0.0)) <= 4e-15) << order << " bin " << k;
            ASSERT_TRUE(std::abs(constant[k] - (k == 0 ? 1.0 : 0.0)) <= 1e-15) << order << " bin " << k;
            ASSERT_TRUE(std::abs(Long(impulse[k]) - turn(k * place, length)) <= 4e-15L) << order << " bin " << k;
        }
    }
}

TEST_P(TransformOfEachKernel, sweep_power_is_the_mean_square_of_the_direct_sums_of_all_blocks) {
    for (const int order : {0, 1, 3, 4, 6, 7, 8, 9}) {
        const Transform transform(order, 1, 8);
        for (const int blocks : {1, 2, 5, 13}) {
            const Complexes x = noise(transform.length * static_cast<std::size_t>(blocks), 3);
            Reals expected(transform.length);
            for (int block = 0; block < blocks; block++) {
                const auto sum =
                    directTransform(x.data() + static_cast<std::size_t>(block) * transform.length, transform.length);
                const double n = static_cast<double>(transform.length);
                for (std::size_t k = 0; k < sum.size(); k++)
                    expected[k] += static_cast<double>(std::norm(sum[k])) / (n * n * blocks);
            }
            const Reals mean = transform.sweepPower(x.data(), blocks);
            const double bound = 1e-14 * largestOf(expected);
            for (std::size_t k = 0; k < mean.size(); k++)
                ASSERT_TRUE(std::abs(mean[k] - expected[k]) <= bound) << order << " bin " << k;
        }
    }
}

TEST_P(TransformOfEachKernel, sweep_power_agrees_with_the_primitives_and_keeps_the_power_of_the_samples) {
    const Complexes x = noise(98304 + 1, 11);
    for (const int order : {9, 10, 11, 12, 13, 16}) {
        const Transform transform(order);
        const int blocks = static_cast<int>(98304 / transform.length);
        const Kelp64fc* sweep = x.data() + 1;  // 16 bytes past whatever the heap aligned
        const Reals mean = transform.sweepPower(sweep, blocks);
        Reals expected(transform.length), magnitude(transform.length);
        long double samplePower = 0.0L, binPower = 0.0L;
        for (int block = 0; block < blocks; block++) {
            const Kelp64fc* start = sweep + static_cast<std::size_t>(block) * transform.length;
            const Complexes y = transform.forward(Complexes(start, start + transform.length));
            kelpsMagnitude_64fc(y.data(), magnitude.data(), static_cast<int>(y.size()));
            kelpsSqr_64f_I(magnitude.data(), static_cast<int>(y.size()));
            for (std::size_t k = 0; k < y.size(); k++) {
                expected[k] += magnitude[k] / blocks;
                samplePower += std::norm(start[k]) / static_cast<double>(blocks * transform.length);
            }
        }
        const double bound = 1e-12 * largestOf(expected);
        for (std::size_t k = 0; k < mean.size(); k++) {
            ASSERT_TRUE(std::abs(mean[k] - expected[k]) <= bound) << order << " bin " << k;
            binPower += mean[k];
        }
        EXPECT_TRUE(std::abs(binPower - samplePower) <= 1e-13L * samplePower) << order;
    }
}

TEST_P(TransformOfEachKernel, the_forced_kernel_is_the_one_that_runs) {
    EXPECT_STREQ(GetParam(), kelpKernelName());
    const Transform transform(9);
    EXPECT_STREQ(GetParam(), kelpsFFTKernelName(transform.spec));
    EXPECT_EQ(kelpStsNoErr, kelpInit());
    EXPECT_STREQ(GetParam(), kelpKernelName()) << "kelpInit must not undo a forced kernel";
    // Each kernel adds in its own order or with its own rounding, so its low bits tell it from the others.
    const Complexes x = noise(512 * 12, 5);
    const Reals mean = transform.sweepPower(x.data(), 12);
    for (const char* other : kernelNames()) {
        ASSERT_TRUE(kelpForceKernel(other));
        const Reals otherMean = Transform(9).sweepPower(x.data(), 12);
        EXPECT_EQ(std::string(other) == GetParam(), mean == otherMean) << other;
        EXPECT_EQ(mean, transform.sweepPower(x.data(), 12)) << "a specification keeps its kernel";
    }
}

TEST(Transform, of_a_huge_block_works_in_place_in_small_memory) {
    const Transform transform(23);
    std::int32_t spec = 0, init = 0, work = 0;
    ASSERT_EQ(kelpStsNoErr, kelpsFFTGetSize_C_64fc(23, 1, 0, &spec, &init, &work));
    EXPECT_LT(spec + work, 1 << 23);
    const std::size_t length = transform.length, impulse = 1234567, tone = 7654321;
    Complexes x(length);
    for (std::size_t k = 0; k < length; k++)
        x[k] = std::polar(1.0, static_cast<double>(2.0L * kPi * static_cast<long double>(k * tone % length) / length));
    x[impulse] += static_cast<double>(length);
    x = transform.forward(std::move(x));
    const auto check = [&](std::size_t k) {
        const Long expected = turn(k * impulse, length) + (k == tone ? 1.0L : 0.0L);
        EXPECT_TRUE(std::abs(Long(x[k]) - expected) <= 1e-14L) << k;
    };
    check(tone);
    for (std::size_t k = 0; k < length; k += 997)
        check(k);
    Reals mean(1);
    EXPECT_EQ(kelpStsFftOrderErr, kelpsSweepPower_64fc(x.data(), 1, mean.data(), transform.spec, transform.work));
}

TEST(Transform, set_up_refuses_what_it_cannot_do_and_has_sizes_for_every_order) {
    std::int32_t spec = 0, init = 0, work = 0;
    for (int order = 0; order <= 27; order++) {
        spec = work = init = -1;
        EXPECT_EQ(kelpStsNoErr, kelpsFFTGetSize_C_64fc(order, 1, 0, &spec, &init, &work));
        EXPECT_TRUE(spec > 0 && init >= 0 && work > 0) << order;
    }
    std::vector<std::uint8_t> memory(static_cast<std::size_t>(1) << 16);
    KelpsFFTSpec_C_64fc* made = nullptr;
    for (const auto& [order, flag] : {std::pair{-1, 1}, {28, 1}, {4, 0}, {4, 3}, {4, 16}}) {
        const KelpStatus status = order == 4 ? kelpStsFftFlagErr : kelpStsFftOrderErr;
        EXPECT_EQ(status, kelpsFFTGetSize_C_64fc(order, flag, 0, &spec, &init, &work)) << order << " " << flag;
        EXPECT_EQ(status, kelpsFFTInit_C_64fc(&made, order, flag, 0, memory.data(), nullptr)) << order << " " << flag;
    }
    EXPECT_EQ(nullptr, made);
    EXPECT_EQ(kelpStsNullPtrErr, kelpsFFTGetSize_C_64fc(4, 1, 0, &spec, nullptr, &work));
    EXPECT_EQ(kelpStsNullPtrErr, kelpsFFTInit_C_64fc(&made, 4, 1, 0, nullptr, nullptr));
    EXPECT_EQ(kelpStsNullPtrErr, kelpsFFTInit_C_64fc(nullptr, 4, 1, 0, memory.data(), nullptr));
    const Transform transform(4);
    Complexes x(16);
    Reals mean(16, -1.0);
    EXPECT_EQ(kelpStsNullPtrErr, kelpsFFTFwd_CToC_64fc_I(x.data(), transform.spec, nullptr));
    EXPECT_EQ(kelpStsNullPtrErr, kelpsFFTFwd_CToC_64fc_I(x.data(), nullptr, transform.work));
    EXPECT_EQ(kelpStsNullPtrErr, kelpsSweepPower_64fc(nullptr, 1, mean.data(), transform.spec, transform.work));
    EXPECT_EQ(kelpStsSizeErr, kelpsSweepPower_64fc(x.data(), 0, mean.data(), transform.spec, transform.work));
    EXPECT_EQ(Reals(16, -1.0), mean);
}

}  // namespace

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "KelpTesting.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();
constexpr int kLengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 257};
constexpr double kGuard = -77.0;

class VectorOfEachKernel : public EachKernel {};
INSTANTIATE_TEST_SUITE_P(Kernels, VectorOfEachKernel, testing::ValuesIn(kernelNames()), nameOf);

/// Room for `length` values and two that must stay.
Reals guarded(int length) {
    return Reals(static_cast<std::size_t>(length) + 2, kGuard);
}

/// A status that is no error, and a vector of so many values that it filled.
void expectVector(KelpStatus status, const Reals& actual, int length, double (*expected)(int)) {
    EXPECT_EQ(kelpStsNoErr, status);
    for (int k = 0; k < length + 2; k++)
        EXPECT_EQ(k < length ? expected(k) : kGuard, actual[static_cast<std::size_t>(k)]) << length << " at " << k;
}

TEST_P(VectorOfEachKernel, primitives_do_each_element_and_no_more_at_lengths_around_the_lane_width) {
    for (const int n : kLengths) {
        const std::size_t size = static_cast<std::size_t>(n);
        Complexes cplx(size + 1);
        Reals src(size + 1);
        std::vector<Kelp16s> codes(size + 1);
        for (int k = 0; k < n; k++) {
            cplx[static_cast<std::size_t>(k)] = {3.0 * k, -4.0 * k};
            src[static_cast<std::size_t>(k)] = k - 2.5;
            codes[static_cast<std::size_t>(k)] = static_cast<Kelp16s>(k % 2 ? -32768 + k : 32767 - k);
        }
        Reals a = guarded(n), b = guarded(n);
        const auto expectB = [&](KelpStatus status, double (*expected)(int)) { expectVector(status, b, n, expected); };
        const auto expectA = [&](KelpStatus status, double (*expected)(int)) { expectVector(status, a, n, expected); };
        expectA(kelpsMagnitude_64fc(cplx.data(), a.data(), n), [](int k) { return 5.0 * k; });
        expectA(kelpsSqr_64f_I(a.data(), n), [](int k) { return 25.0 * k * k; });
        expectA(kelpsCplxToReal_64fc(cplx.data(), a.data(), b.data(), n), [](int k) { return 3.0 * k; });
        expectB(kelpStsNoErr, [](int k) { return -4.0 * k; });
        expectA(kelpsConvert_16s64f_Sfs(codes.data(), a.data(), n, 1),
                [](int k) { return (k % 2 ? -32768.0 + k : 32767.0 - k) / 2.0; });
        expectA(kelpsMulC_64f(src.data(), 10.0, a.data(), n), [](int k) { return 10.0 * k - 25.0; });
        expectA(kelpsSubC_64f_I(5.0, a.data(), n), [](int k) { return 10.0 * k - 30.0; });
        expectB(kelpsCopy_64f(src.data(), b.data(), n), [](int k) { return k - 2.5; });
        expectA(kelpsZero_64f(a.data(), n), [](int) { return 0.0; });
        expectA(kelpsSet_64f(-KELP_MAXABS_64F, a.data(), n),
                [](int) { return std::bit_cast<double>(0xFFEFFFFFFFFFFFFF); });
        Complexes copy(size + 1, kGuard);
        EXPECT_EQ(kelpStsNoErr, kelpsCopy_64fc(cplx.data(), copy.data(), n));
        EXPECT_TRUE(std::equal(copy.begin(), copy.end() - 1, cplx.begin()) && copy.back() == kGuard) << n;
    }
}

TEST_P(VectorOfEachKernel, min_max_finds_the_extremes_at_any_place_and_passes_over_not_a_number) {
    for (const int n : kLengths) {
        for (int place = 0; place < n; place++) {
            Reals x(static_cast<std::size_t>(n), 5.0);
            double min = 0.0, max = 0.0;
            x[static_cast<std::size_t>(place)] = 6.0;
            x[static_cast<std::size_t>(n - 1 - place)] = n == 1 ? 6.0 : -6.0;
            EXPECT_EQ(kelpStsNoErr, kelpsMinMax_64f(x.data(), n, &min, &max));
            const bool same = place == n - 1 - place;
            EXPECT_EQ(n == 1 ? 6.0 : -6.0, min) << n;
            EXPECT_EQ(n == 1 || !same ? 6.0 : 5.0, max) << n << " at " << place;
            x.assign(static_cast<std::size_t>(n) + 1, kNan);
            x[static_cast<std::size_t>(place)] = -3.0;
            kelpsMinMax_64f(x.data(), n + 1, &min, &max);
            EXPECT_TRUE(min == -3.0 && max == -3.0) << n << " at " << place;
        }
    }
}

TEST_P(VectorOfEachKernel, log10_errs_by_less_than_one_unit_in_the_last_place) {
    std::mt19937_64 generator(17);
    Reals x;
    for (int k = 0; k < 200000; k++)
        x.push_back(std::bit_cast<double>(generator() % 0x7FF0000000000000));  // all magnitudes
    for (int k = 0; k < 100000; k++)
        x.push_back(0.5 + 1.5e-5 * k);  // around 1
    for (int k = 1; k < 50; k++) {
        x.push_back(1.0 + std::ldexp(1.0, -k));
        x.push_back(1.0 - std::ldexp(1.0, -k));
        x.push_back(std::ldexp(1.0, -1024 - k));  // subnormal
    }
    Reals y(x.size());
    ASSERT_EQ(kelpStsNoErr, kelpsLog10_64f_A53(x.data(), y.data(), static_cast<int>(x.size())));
    long double worst = 0.0L;
    for (std::size_t k = 0; k < x.size(); k++) {
        const long double exact = std::log10(static_cast<long double>(x[k]));
        const double next = std::nextafter(std::abs(static_cast<double>(exact)), kInf);
        const long double error = std::abs(y[k] - exact) / (next - std::abs(static_cast<double>(exact)));
        ASSERT_TRUE(error < 1.0L) << x[k];
        worst = std::max(worst, error);
    }
    RecordProperty("worst_error_in_units", std::to_string(worst));
    for (int n = -22; n <= 308; n++) {
        double power = std::strtod(("1e" + std::to_string(n)).c_str(), nullptr), result = 0.0;
        EXPECT_EQ(kelpStsNoErr, kelpsLog10_64f_A53(&power, &result, 1));
        EXPECT_EQ(static_cast<double>(n), result);
    }
}

TEST_P(VectorOfEachKernel, log10_of_special_values_leaves_the_other_lanes_alone) {
    // clang-format off
    const std::tuple<double, double, KelpStatus> cases[] = {
        {0, -kInf, 18}, {-0.0, -kInf, 18}, {-1, kNan, 0}, {-kInf, kNan, 0}, {kNan, kNan, 0}, {kInf, kInf, 0}, {1, 0, 0},
        {KELP_MAXABS_64F, 308.25471555991674, 0}, {5e-324, -323.3062153431158, 0}};
    // clang-format on
    for (const auto& [value, logarithm, status] : cases)
        for (const int n : kLengths)
            for (int place = 0; place < n; place++) {
                Reals x(static_cast<std::size_t>(n), 1000.0), y = guarded(n);
                x[static_cast<std::size_t>(place)] = value;
                ASSERT_EQ(status, kelpsLog10_64f_A53(x.data(), y.data(), n)) << value;
                for (int k = 0; k < n + 2; k++) {
                    const double expected = k == place ? logarithm : k < n ? 3.0 : kGuard;
                    const double actual = y[static_cast<std::size_t>(k)];
                    ASSERT_TRUE(std::isnan(expected) ? std::isnan(actual) : actual == expected) << value << actual;
                }
            }
}

TEST_P(VectorOfEachKernel, intake_cuts_samples_toward_zero_and_keeps_the_low_16_bits) {
    // clang-format off
    const std::pair<double, int> cases[] = {
        {1.9, 1}, {-1.9, -1}, {-0.5, 0}, {32767.9, 32767}, {32768.0, -32768}, {-32769.0, 32767}, {65536.0, 0},
        {-65537.5, -1}, {2147483647.5, -1}, {2147483648.0, 0}, {-2147483649.0, -1}, {0x1p40 + 5.0, 5},
        {-0x1p40 - 5.0, -5}, {0x1p62, 0}, {0x1p52 + 3.0, 3}, {0x1p63, 0}, {-0x1p63, 0}, {1.5e300, 0}, {kInf, 0},
        {-kInf, 0}, {kNan, 0}};
    // clang-format on
    for (const auto& [value, expected] : cases)
        for (const int n : kLengths)
            for (int place = 0; place < n; place++) {
                Reals i(static_cast<std::size_t>(n), 100.5), q(static_cast<std::size_t>(n), -200.5);
                i[static_cast<std::size_t>(place)] = value;
                q[static_cast<std::size_t>(n - 1 - place)] = value;
                std::vector<Kelp16s> iq(2 * static_cast<std::size_t>(n) + 2, 9);
                ASSERT_EQ(kelpStsNoErr, kelpsTruncInterleave_64f16s(i.data(), q.data(), iq.data(), n));
                for (int k = 0; k < n; k++) {
                    ASSERT_EQ(k == place ? expected : 100, iq[2 * static_cast<std::size_t>(k)]) << value;
                    ASSERT_EQ(k == n - 1 - place ? expected : -200, iq[2 * static_cast<std::size_t>(k) + 1]) << value;
                }
                ASSERT_TRUE(iq[2 * static_cast<std::size_t>(n)] == 9 && iq.back() == 9);
            }
}

TEST_P(VectorOfEachKernel, intake_sums_subtracts_and_fans_out_pairs) {
    std::vector<Kelp16s> lowest(2 * 98304, -32768);
    double sumI = 0.0, sumQ = 0.0;
    lowest[1] = 32767;
    EXPECT_EQ(kelpStsNoErr, kelpsSumPairs_16s64f(lowest.data(), 98304, &sumI, &sumQ));
    EXPECT_EQ(-32768.0 * 98304.0, sumI);
    EXPECT_EQ(-32768.0 * 98303.0 + 32767.0, sumQ);
    for (const int n : kLengths) {
        std::vector<Kelp16s> iq(2 * static_cast<std::size_t>(n) + 1, 1);
        for (std::size_t k = 0; k < 2 * static_cast<std::size_t>(n); k++)
            iq[k] = static_cast<Kelp16s>(k % 2 ? -5 * k : 3 * k);
        kelpsSumPairs_16s64f(iq.data(), n, &sumI, &sumQ);
        EXPECT_EQ(3.0 * n * (n - 1), sumI);
        EXPECT_EQ(-5.0 * n * n, sumQ);
        EXPECT_EQ(kelpStsNoErr, kelpsSubCPairs_16s_I(-32768, 7, iq.data(), n));
        EXPECT_EQ(1, iq.back());
        Complexes cplx(static_cast<std::size_t>(n) + 1, kGuard);
        Reals i = guarded(n), q = guarded(n);
        const KelpStatus status = kelpsFanOut_16s64f(iq.data(), cplx.data(), i.data(), q.data(), n);
        expectVector(status, i, n, [](int k) { return 6.0 * k - 32768.0; });
        expectVector(status, q, n, [](int k) { return -10.0 * k - 12.0; });
        for (std::size_t k = 0; k < cplx.size(); k++)
            EXPECT_EQ(k + 1 < cplx.size() ? Kelp64fc(i[k], q[k]) : kGuard, cplx[k]);
    }
}

TEST(Vector, last_pair_that_is_not_zero_is_found_by_either_part) {
    std::vector<Kelp16s> iq(20, 0);
    int index = 0;
    EXPECT_EQ(kelpStsNoErr, kelpsLastNonZeroPair_16s(iq.data(), 10, &index));
    EXPECT_EQ(-1, index);
    for (const int place : {0, 1, 10, 15, 19}) {
        iq[static_cast<std::size_t>(place)] = -1;
        kelpsLastNonZeroPair_16s(iq.data(), 10, &index);
        EXPECT_EQ(place / 2, index);
    }
}

TEST(Vector, max_order_counts_the_bits_of_the_largest_size) {
    // clang-format off
    const std::pair<std::vector<Kelp32s>, int> cases[] = {
        {{0}, 0}, {{1}, 1}, {{4095}, 12}, {{4096}, 13}, {{0, -4096, 3}, 13}, {{2147483647}, 31},
        {{-2147483647 - 1}, 32}};
    // clang-format on
    for (const auto& [values, expected] : cases) {
        int order = -1;
        EXPECT_EQ(kelpStsNoErr, kelpsMaxOrder_32s(values.data(), static_cast<int>(values.size()), &order));
        EXPECT_EQ(expected, order);
    }
}

TEST(Vector, every_function_refuses_null_pointers_and_lengths_and_does_nothing) {
    double a[2] = {kGuard, kGuard}, b[2] = {kGuard, kGuard};
    Kelp64fc c[2] = {kGuard, kGuard}, d[2] = {kGuard, kGuard};
    Kelp16s s[4] = {9, 9, 9, 9};
    int order = 9;
    Kelp32s whole[2] = {1, 2};
    const auto expectAll = [&](KelpStatus status, int n, double* p, Kelp64fc* z, Kelp16s* h, int* o) {
        // clang-format off
        const KelpStatus statuses[] = {
            kelpsMagnitude_64fc(z, b, n), kelpsMagnitude_64fc(d, p, n), kelpsSqr_64f_I(p, n), kelpsCopy_64f(p, b, n),
            kelpsCopy_64f(b, p, n), kelpsCopy_64fc(z, d, n), kelpsCopy_64fc(d, z, n), kelpsLog10_64f_A53(p, b, n),
            kelpsLog10_64f_A53(b, p, n), kelpsMulC_64f(p, 2.0, b, n), kelpsMulC_64f(b, 2.0, p, n),
            kelpsSubC_64f_I(1.0, p, n), kelpsMaxOrder_32s(whole, n, o), kelpsMinMax_64f(p, n, a, b),
            kelpsMinMax_64f(a, n, p, b), kelpsMinMax_64f(a, n, b, p), kelpsZero_64f(p, n), kelpsSet_64f(1.0, p, n),
            kelpsConvert_16s64f_Sfs(h, b, n, 0), kelpsConvert_16s64f_Sfs(s, p, n, 0),
            kelpsCplxToReal_64fc(z, a, b, n), kelpsCplxToReal_64fc(d, p, b, n), kelpsCplxToReal_64fc(d, b, p, n),
            kelpsTruncInterleave_64f16s(p, b, s, n), kelpsTruncInterleave_64f16s(b, p, s, n),
            kelpsTruncInterleave_64f16s(a, b, h, n), kelpsLastNonZeroPair_16s(h, n, &order),
            kelpsSumPairs_16s64f(h, n, a, b), kelpsSumPairs_16s64f(s, n, p, b), kelpsSubCPairs_16s_I(1, 1, h, n),
            kelpsFanOut_16s64f(h, d, a, b, n), kelpsFanOut_16s64f(s, z, a, b, n), kelpsFanOut_16s64f(s, d, p, b, n),
            kelpsFanOut_16s64f(s, d, a, p, n),
        };
        // clang-format on
        for (const KelpStatus actual : statuses)
            EXPECT_EQ(status, actual) << &actual - statuses;
    };
    expectAll(kelpStsSizeErr, 0, a, c, s, &order);
    expectAll(kelpStsSizeErr, -1, a, c, s, &order);
    expectAll(kelpStsNullPtrErr, 1, nullptr, nullptr, nullptr, nullptr);
    expectAll(kelpStsNullPtrErr, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(a[0] == kGuard && b[0] == kGuard && c[0] == kGuard && d[0] == kGuard && s[0] == 9 && order == 9);
}

TEST(Module, memory_is_aligned_and_refused_for_no_length) {
    EXPECT_EQ(nullptr, kelpMalloc(0));
    EXPECT_EQ(nullptr, kelpMalloc(-5));
    kelpsFree(nullptr);
    for (const std::int32_t length : {1, 63, 64, 4097}) {
        void* p = kelpMalloc(length);
        EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(p) % 64);
        kelpsFree(p);
    }
}

TEST(Module, status_texts_are_exact_and_an_unknown_status_says_so) {
    EXPECT_STREQ("kelpStsNoErr: No errors", kelpGetStatusString(0));
    EXPECT_STREQ("kelpStsSizeErr: Incorrect value for data size", kelpGetStatusString(-6));
    EXPECT_STREQ("kelpStsNullPtrErr: Null pointer error", kelpGetStatusString(-8));
    for (const KelpStatus unknown : {-216, -99999, 12345})
        EXPECT_STREQ("kelpStsUnknownStatusCodeErr: Unknown status code", kelpGetStatusString(unknown));
}

TEST(Module, takes_its_kernel_from_the_environment_and_fails_for_a_bad_name) {
    for (const char* name : kernelNames()) {
        setenv("TARN_KERNEL", name, 1);
        EXPECT_EQ(kelpStsNoErr, kelpInit());
        EXPECT_STREQ(name, kelpKernelName());
    }
    setenv("TARN_KERNEL", "abacus", 1);
    EXPECT_LT(kelpInit(), 0);
    EXPECT_FALSE(kelpForceKernel("abacus"));
    unsetenv("TARN_KERNEL");
    EXPECT_EQ(kelpStsNoErr, kelpInit());
    EXPECT_STREQ(kernelNames().front(), kelpKernelName());
    EXPECT_STREQ("portable", kernelNames().back());
}

}  // namespace

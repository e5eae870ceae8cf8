// Numbers of all answers beside the C++ stream and the C library.
#include "Support/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace {

using Limits = std::numeric_limits<double>;
constexpr double Extremes[] = {Limits::max(),      Limits::lowest(),    Limits::min(),       Limits::denorm_min(),
                               Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN()};

TEST(NumberText, HasTheBytesOfADefaultStream) {
    std::vector<double> values{0.0,     -0.0,     1.0,      -1.0,       0.1,         100000.0,       999999.0,
                               0.5,     2.5,      1e-4,     999999.5,   1e6,         123456.5,       123455.5,
                               1e5,     1e-5,     1e100,    9.99999e-5, 9.999995e-5, 0.000123456789, 99999.95,
                               -1e-100, 12345.65, 1.000005, 1.0000005,  1.0000015,   99999.949999,   3.1415926};
    values.insert(values.end(), std::begin(Extremes), std::end(Extremes));
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> exponent(-7, 8), mantissa(-10, 10);
    for (int k = 0; k < 20000; ++k) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        values.push_back(value);
        values.push_back(std::round(value * 64) / 64);  // ties
        values.push_back(std::stod(std::to_string(std::lround(value)) + "5e-3"));
    }
    std::ostringstream expected;
    std::string text;
    for (const double value : values) {
        expected.str("");
        expected << value;
        text.clear();
        AppendStreamText(text, value);
        ASSERT_EQ(text, expected.str());
    }
}

#ifdef NDEBUG
constexpr int rounds = 1'000'000;  // of ten numbers each
#else
constexpr int rounds = 20'000;
#endif

void ExpectFixed(std::initializer_list<double> values) {
    static std::string text;
    for (const double value : values) {
        char expected[400];
        const int length = std::snprintf(expected, sizeof expected, "%f", value);
        text.clear();
        AppendFixedText(text, value);
        ASSERT_EQ(text, std::string_view(expected, static_cast<std::size_t>(length))) << std::hexfloat << value;
    }
}

TEST(NumberText, HasTheBytesOfPercentF) {
    const double top = std::ldexp(1.0, 41);  // where the quick way ends
    for (const double extreme : Extremes)
        ExpectFixed({extreme});
    ExpectFixed({0.0, -0.0, 0.5e-6, 1.5e-6, -2.5e-6, 0.9999995, 0.99999949999, -1e-7, 1e15, 1e-310, 32767, -32768});
    ExpectFixed({std::ldexp(1, -7), std::ldexp(3, -7), top, -top, std::nextafter(top, 0), top / 2 + 0.5});
    ExpectFixed({4294967295.0, 4294967296.5, 999999.9999995, Limits::epsilon()});
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> level(-160, 20);
    for (int k = 0; k < rounds && !testing::Test::HasFatalFailure(); ++k) {
        const std::uint64_t bits = random();
        const auto whole = static_cast<std::int64_t>(bits);
        const int scale = static_cast<int>(bits % 70);
        const double any = std::bit_cast<double>(bits), spread = std::ldexp(static_cast<double>(whole), -scale);
        const double millionth = static_cast<double>(whole % 2'000'000'000) / 1e6;
        ExpectFixed({any, spread, -std::ldexp(spread, -20), level(random), static_cast<double>(whole % 40000),
                     static_cast<double>(whole >> scale % 63), std::round(level(random) * 128) / 128,  // ties
                     millionth + 5e-7, millionth, std::ldexp(static_cast<double>(whole % 1024) + 0.5, -scale % 24)});
    }
}

}  // namespace

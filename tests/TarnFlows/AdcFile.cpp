// Parameters in file names, sample lines, and the fast reader against the plain rules.
#include "Stores/AdcFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

namespace {

namespace fs = std::filesystem;

class AdcFileTest : public ::testing::Test {
protected:
    AdcFileTest() { fs::create_directories(m_folder); }
    ~AdcFileTest() override { fs::remove_all(m_folder); }
    std::string Write(const std::string& text) const {
        const std::string path = (m_folder / "samples.txt").string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    const fs::path m_folder = fs::path(::testing::TempDir()) /
                              ("adc_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};

/// Everything a reading gives: the numbers to the bit, or the failure's words.
std::string Outcome(const std::vector<double>& i, const std::vector<double>& q, std::size_t lines) {
    std::ostringstream text;
    text << std::hexfloat << lines;
    for (std::size_t k = 0; k < lines; ++k)
        text << ' ' << i[k] << ' ' << q[k];
    return text.str();
}

std::string FastOutcome(const std::string& path, std::size_t n) {
    std::vector<double> i(n), q(n);
    try {
        const auto lines = AdcFile::ReadAdcFile(path, i.data(), q.data(), n);
        return lines ? Outcome(i, q, *lines) : "not opened";
    } catch (const std::exception& error) {
        return error.what();
    }
}

std::string SlowOutcome(const std::string& text, std::size_t n) {
    std::vector<double> i(n), q(n);
    std::istringstream stream(text);
    std::string line;
    std::size_t k = 0;
    try {
        for (; k < n && std::getline(stream, line); ++k)
            AdcFile::SetIQFromLine(&i[k], &q[k], line);
    } catch (const std::exception& error) {
        return error.what();
    }
    return Outcome(i, q, k);
}

TEST(AdcFile, AParameterStandsBetweenItsKeyAndTheNextUnderscore) {
    EXPECT_EQ(AdcFile::ParseParamFromFilename("BAND_5.2_CHANNEL_36_", "BAND_"), "5.2");
    EXPECT_EQ(AdcFile::ParseParamFromFilename("BAND_1_BAND_2_", "BAND_"), "1");
    for (const char* name : {"x_BAND_5.2", "BAND_", "BAND__x", "band_5_", ""})
        EXPECT_EQ(AdcFile::ParseParamFromFilename(name, "BAND_"), "") << name;
    std::string band, channel, bandwidth, chain;
    EXPECT_TRUE(
        AdcFile::GetParamsFromFilename("r_CHANNEL_6_BAND_2.4_CHAIN_A_BW_20_.txt", band, channel, bandwidth, chain));
    EXPECT_EQ(band + "," + channel + "," + bandwidth + "," + chain, "2.4,6,20,A");
    for (const char* name : {"BAND_5.2_CHANNEL_36_BW_20_CHAIN_A.txt", "CHANNEL_36_BW_20_CHAIN_A_BAND_5.2", "RESULT.CSV",
                             "BAND_5_CHANNEL_36_CHAIN_A_", "BAND_5_BW_20_CHAIN_A_"})
        EXPECT_FALSE(AdcFile::GetParamsFromFilename(name, band, channel, bandwidth, chain)) << name;
}

TEST_F(AdcFileTest, ALineGivesItsTwoNumbersOrTheConversionsFailureInTheReaderToo) {
    const auto check = [&](const std::string& line, const std::string& expected) {
        EXPECT_EQ(SlowOutcome(line + "\n", 1), expected) << line;
        EXPECT_EQ(FastOutcome(Write(line + "\n"), 1), expected) << line;
        EXPECT_EQ(FastOutcome(Write(line), 1), line.empty() ? "0" : expected) << line;  // an empty file has no line
    };
    const std::string nul("12\0x ,34\0005", 10);
    for (const std::string& line : std::vector<std::string>{
             "12 ,34", "12    ;34", "12 ,34 ", "12 ,34\r", "12 ,34x 9", "12x ,34", "+12 ,+34", "\t12 ,\t34", "12\v ,34",
             "0xC ,0x2.2p4", "1.2e1 ,.34e2", "12e ,34e+", "000000000012 ,34", "12 934", nul})
        check(line, Outcome({12}, {34}, 1));
    for (const char* line : {"12", "12   ", "12,34", "12\t,34", "12 x12", "12\r", "12 \r"})
        check(line, Outcome({12}, {12}, 1));
    check("-5 --6", Outcome({-5}, {-6}, 1));
    check("0x ,0xg", Outcome({0}, {0}, 1));
    check("inf ,-INFINITY", Outcome({INFINITY}, {-INFINITY}, 1));
    check("123456789 ,1234567890123", Outcome({123456789}, {1234567890123}, 1));
    check("9876543210 ,999999999", Outcome({9876543210}, {999999999}, 1));
    check("1e-310 ,4.9e-324", Outcome({1e-310}, {4.9e-324}, 1));
    for (const char* line : {"", "   ", " 1 ,2", "1 2", "1 , 2", "x ,2", "1 ,x", "+-1", "--1", "- ,1", ".", "\r"})
        check(line, "invalid stod argument");
    for (const char* line : {"1 ,1e400", "-1e-400", "0x1p99999"})
        check(line, "stod argument out of range");
    double i = 0, q = 0;
    AdcFile::SetIQFromLine(&i, &q, "-0 ,nan");
    EXPECT_TRUE(std::signbit(i) && std::isnan(q));
    EXPECT_EQ(FastOutcome(Write("-0 ,-0\n"), 1), "1 -0x0p+0 -0x0p+0");
}

TEST_F(AdcFileTest, TheReaderAgreesWithTheLineRulesOnMangledText) {
    std::mt19937 random(5);
    constexpr char Odd[] = " \n\r,;-+.eExX0123456789infa\xFF\t";  // and the zero at its end
    std::string clean;
    for (int k = 0; k < 12; ++k)
        clean +=
            std::to_string(int(random() % 4000) - 2000) + " ," + std::to_string(int(random() % 4000) - 2000) + "\n";
    for (std::size_t length = 0; length <= clean.size(); ++length)
        EXPECT_EQ(FastOutcome(Write(clean.substr(0, length)), 20), SlowOutcome(clean.substr(0, length), 20)) << length;
    for (int round = 0; round < 400; ++round) {
        std::string text = clean;
        for (unsigned change = random() % 3; change < 3; ++change)
            text[random() % text.size()] = Odd[random() % sizeof(Odd)];
        ASSERT_EQ(FastOutcome(Write(text), 20), SlowOutcome(text, 20)) << text;
    }
}

TEST_F(AdcFileTest, LinesThatCrossTheReadingBuffersEdgeAreWhole) {
    std::string text;
    while (text.size() < 300000)
        text += std::to_string(int(text.size() % 65536) - 32768) + " ,-17" + (text.size() % 3 ? "\n" : "\r\n");
    text.pop_back();
    EXPECT_EQ(FastOutcome(Write(text), 50000), SlowOutcome(text, 50000));
    EXPECT_EQ(FastOutcome(Write(text), 5), SlowOutcome(text, 5));
    EXPECT_EQ(FastOutcome(Write(text), 0), "0");
    const std::string megabyte(1 << 20, ' ');
    const std::string longLines = "1" + megabyte + ",2" + megabyte + "\n" + std::string(1 << 20, '0') + "3 ,4\n5 ,6\n";
    EXPECT_EQ(FastOutcome(Write(longLines), 9), "3 0x1p+0 0x1p+1 0x1.8p+1 0x1p+2 0x1.4p+2 0x1.8p+2");
}

TEST_F(AdcFileTest, WhatLiesBeyondTheLastLineStaysAsItWas) {
    std::vector<double> i(3, 9.0), q(3, 9.0);
    EXPECT_EQ(AdcFile::ReadAdcFile(Write("1 ,2\n"), i.data(), q.data(), 3), 1u);
    EXPECT_EQ(i, (std::vector<double>{1, 9, 9}));
    EXPECT_EQ(q, (std::vector<double>{2, 9, 9}));
}

TEST_F(AdcFileTest, OnlyARegularFileIsOpened) {
    for (const std::string& path : {m_folder.string(), (m_folder / "absent").string(), std::string("/dev/zero"),
                                    std::string(), std::string(5000, 'x')})
        EXPECT_EQ(FastOutcome(path, 1), "not opened") << path;
}

}  // namespace

// The reader of sample files against the rules of the format, which are written out here with the C library's strtod.
#include "SampleReader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

#include "Numbers.h"
#include "SampleWriter.h"
#include "Support/TempFolder.h"

using namespace SampleFiles;

namespace {

namespace fs = std::filesystem;

std::string Write(const std::string& text) {
    static const Support::TempFolder folder;
    return folder.Write("samples.txt", text);
}

/// Everything a reading gives: the numbers to the bit, and why it ended.
class Outcome {
public:
    void Add(double i, double q) { m_text << std::hexfloat << ' ' << i << ' ' << q; }
    std::string End(const std::string& fault) const { return m_text.str() + (fault.empty() ? "" : "; " + fault); }

private:
    std::ostringstream m_text;
};

std::string Text(const std::vector<std::pair<double, double>>& samples, const std::string& fault = {}) {
    Outcome outcome;
    for (const auto& [i, q] : samples)
        outcome.Add(i, q);
    return outcome.End(fault);
}

/// @param block  samples of one call
std::string ReadWith(const std::string& path, std::size_t block) {
    auto reader = SampleReader::Open(path);
    if (!reader) return "not opened";
    Outcome outcome;
    std::vector<double> i(block), q(block);
    for (;;) {
        const auto stretch = reader->Read(i, q);
        for (std::size_t k = 0; k < stretch.samples; ++k)
            outcome.Add(i[k], q[k]);
        if (!stretch.state || stretch.samples < block) return outcome.End(FaultText(stretch.state));
    }
}

/// The number at the start of a field, as the C library reads it; what lies too far from 1 for a double is out of
/// range.
std::string Number(const std::string& field, const std::string& name, double& value) {
    char* end = nullptr;
    errno = 0;
    value = std::strtod(field.c_str(), &end);
    if (end == field.c_str()) return name + " isn't a number";
    return errno == ERANGE && (value == 0.0 || std::isinf(value)) ? name + " is out of range" : "";
}

std::string ByTheRules(const std::string& text) {
    Outcome outcome;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const auto blank = line.find(' ');
        const auto dropped = blank == std::string::npos ? blank : line.find_first_not_of(' ', blank);
        double i = 0, q = 0;
        auto fault = Number(line.substr(0, blank), "I", i);
        q = i;
        if (fault.empty() && dropped != std::string::npos) {
            const auto rest = line.substr(dropped + 1);
            fault = Number(rest.substr(0, rest.find(' ')), "Q", q);
        }
        if (!fault.empty()) return outcome.End(fault);
        outcome.Add(i, q);
    }
    return outcome.End({});
}

TEST(SampleReader, ALineGivesItsTwoNumbersOrItsFault) {
    const auto check = [](const std::string& line, const std::string& expected) {
        EXPECT_EQ(ReadWith(Write(line + "\n"), 4), expected) << line;
        EXPECT_EQ(ReadWith(Write(line), 4), line.empty() ? "" : expected) << line;  // an empty file has no line
    };
    const std::string nul("12\0x ,34\0005", 10);
    for (const std::string& line : std::vector<std::string>{
             "12 ,34", "12    ;34", "12 ,34 ", "12 ,34\r", "12 ,34x 9", "12x ,34", "+12 ,+34", "\t12 ,\t34", "12\v ,34",
             "0xC ,0x2.2p4", "1.2e1 ,.34e2", "12e ,34e+", "000000000012 ,34", "12 934", nul})
        check(line, Text({{12, 34}}));
    for (const char* line : {"12", "12   ", "12,34", "12\t,34", "12 x12", "12\r", "12 \r"})
        check(line, Text({{12, 12}}));
    check("-5 --6", Text({{-5, -6}}));
    check("0x ,0xg", Text({{0, 0}}));
    check("-0 ,-0", Text({{-0.0, -0.0}}));
    check("inf ,-INFINITY", Text({{INFINITY, -INFINITY}}));
    check("123456789 ,1234567890123", Text({{123456789, 1234567890123}}));
    check("9876543210 ,999999999", Text({{9876543210, 999999999}}));
    check("1e-310 ,4.9e-324", Text({{1e-310, 4.9e-324}}));
    for (const char* line : {"", "   ", " 1 ,2", "x ,2", "+-1", "--1", "- ,1", ".", "\r"})
        check(line, Text({}, "I isn't a number"));
    for (const char* line : {"1 2", "1 , 2", "1 ,x"})
        check(line, Text({}, "Q isn't a number"));
    check("-1e-400", Text({}, "I is out of range"));
    check("1 ,0x1p99999", Text({}, "Q is out of range"));
}

TEST(SampleReader, AgreesWithTheRulesOnMangledTextAndInAnyBlock) {
    std::mt19937 random(5);
    constexpr char Odd[] = " \n\r,;-+.eExX0123456789infa\xFF\t";  // and the zero at its end
    std::string clean;
    for (int k = 0; k < 12; ++k)
        clean +=
            std::to_string(int(random() % 4000) - 2000) + " ," + std::to_string(int(random() % 4000) - 2000) + "\n";
    for (std::size_t length = 0; length <= clean.size(); ++length)
        EXPECT_EQ(ReadWith(Write(clean.substr(0, length)), 1 + length % 9), ByTheRules(clean.substr(0, length)));
    for (int round = 0; round < 400; ++round) {
        std::string text = clean;
        for (unsigned change = random() % 3; change < 3; ++change)
            text[random() % text.size()] = Odd[random() % sizeof(Odd)];
        ASSERT_EQ(ReadWith(Write(text), 1 + random() % 20), ByTheRules(text)) << text;
    }
    std::string text;  // lines that the reader's own blocks cut
    while (text.size() < 300000)
        text += std::to_string(int(text.size() % 65536) - 32768) + " ,-17" + (text.size() % 3 ? "\n" : "\r\n");
    text.pop_back();
    EXPECT_EQ(ReadWith(Write(text), 1000), ByTheRules(text));
    const std::string blanks(200000, ' ');
    text = "1" + blanks + ",2" + blanks + "\n" + std::string(300000, '0') + "3 ,4\n5 ,6\n";
    EXPECT_EQ(ReadWith(Write(text), 9), ByTheRules(text));
}

TEST(SampleReader, AFileWithoutALineEndCostsBoundedMemory) {
    const auto path = Write("1 ,2\n");
    fs::resize_file(path, std::uintmax_t{1} << 33);  // a hole of 8 GB
    EXPECT_EQ(ReadWith(path, 9), Text({{1, 2}}, "the line has no end within 1048576 bytes"));
    const std::string longest = "1 ,2" + std::string(MaxLineBytes - 4, ' ');
    EXPECT_EQ(ReadWith(Write(longest), 9), Text({{1, 2}}));
    EXPECT_EQ(ReadWith(Write(longest + " \n"), 9), Text({}, "the line has no end within 1048576 bytes"));
}

TEST(SampleReader, WhatLiesBeyondTheSamplesStaysAsItWas) {
    std::vector<double> i(3, 9.0), q(3, 9.0);
    EXPECT_EQ(SampleReader::Open(Write("1 ,2\n"))->Read(i, q).samples, 1u);
    EXPECT_EQ(i, (std::vector<double>{1, 9, 9}));
    EXPECT_EQ(q, (std::vector<double>{2, 9, 9}));
}

TEST(SampleReader, OpensRegularFilesOnly) {
    for (const std::string& path :
         {testing::TempDir(), testing::TempDir() + "absent", std::string("/dev/zero"), std::string(5000, 'x')})
        EXPECT_EQ(ReadWith(path, 1), "not opened") << path;
}

TEST(SampleWriter, WritesWhatTheReaderReads) {
    EXPECT_EQ(SampleText(std::vector{24.0, -32768.0, 0.0}, std::vector{-1.0, 32767.0, -0.0}),
              "24 ,-1\n-32768 ,32767\n0 ,0\n");
    const auto path = Write("old");
    ASSERT_TRUE(WriteSampleFile(path, std::vector{1.0, -2.0}, std::vector{3.0, 4.0}));
    EXPECT_EQ(ReadWith(path, 9), Text({{1, 3}, {-2, 4}}));
    EXPECT_NE(WriteSampleFile("/nowhere/x.txt", {}, {}).Reason().find("/nowhere/x.txt"), std::string::npos);
}

TEST(Numbers, OfALineStandBetweenAnythingElse) {
    EXPECT_EQ(NumberLinesOf("1 -2.5,x3e2;\n\n7\n"), (std::vector<std::vector<double>>{{1, -2.5, 300}, {}, {7}}));
    EXPECT_EQ(NumbersOf("A: -1,5"), (std::vector<double>{-1, 5}));
    EXPECT_EQ(ParseInt(" +12x").value, 12);
    EXPECT_EQ(ParseInt("-99999999999").status, std::errc::result_out_of_range);
    EXPECT_EQ(ParseInt("-99999999999").value, std::numeric_limits<std::int32_t>::min());
}

}  // namespace

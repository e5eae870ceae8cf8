// The gain CSV file: its rows, its messages, and its look-up.
#include "Stores/GainFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "Support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

const char* const Columns = "The gain CSV file has a wrong Format. It must have 5 columns";
const char* const Conversion = "Frequency number or gain value have a wrong Common::Format";
const std::string Header = "mac,chain,freq,gain,bw\n";

class GainFileTest : public ::testing::Test {
protected:
    /// Message and rows, as "message|gain gain ...".
    std::string Read(const std::string& text) { return ReadPath(m_folder.Write("GainCSV.csv", text)); }
    std::string ReadPath(const std::string& path) {
        m_list.Clear();
        std::string outcome = ReadGainFile(path, m_list).value_or("") + "|";
        for (const GainListNode& node : m_list.Nodes())
            outcome += std::to_string(static_cast<int>(node.gain)) + " ";
        return outcome;
    }

    const Support::TempFolder m_folder;
    GainList m_list;
};

TEST_F(GainFileTest, RowsAreKeptUpToTheFirstFaultWhichIsReported) {
    const std::string row = "m,A,2412,1,20MHz\n", other = "m,B,2412,2,20MHz\n";
    const std::pair<std::string, std::string> cases[] = {
        {Header + row + other, "|1 2 "},
        {Header, "|"},
        {"", std::string(Columns) + "|"},
        {"a,b,c,d\n" + row, std::string(Columns) + "|"},
        {"a,b,c,d,e,f\n" + row, std::string(Columns) + "|"},
        {Header + row + "m,,2412,2,20MHz\n" + other, std::string(Columns) + "|1 "},
        {Header + row + "m,A,2412,2,20MHz,x\n", std::string(Columns) + "|1 "},
        {Header + row + "\n", std::string(Columns) + "|1 "},
        {Header + row + "m,A,1e999,2,20MHz\n" + other, std::string(Conversion) + "|1 "},
        {Header + row + "m,A,2412,9,20MHz\n" + "m,A,2412.0x,9,20MHz\n" + other, "|1 2 "},
        {Header + "m,A,none,none,20MHz", "|0 "},
        {Header + "m,A, 2412 , 7dB,20MHz\r\nm,B,,2412,8,20MHz\r\n", "|7 8 "},
        {Header + std::string(1 << 20, 'm') + ",A,2412,5,20MHz\n" + row, "|5 1 "},
        {Header + "m,A,nan,3,20MHz\nm,A,nan,4,20MHz\n", "|3 4 "},
        {Header + "m,A,0,3,20MHz\nm,A,-0,4,20MHz\n", "|3 "}};
    for (const auto& [text, outcome] : cases)
        EXPECT_EQ(Read(text), outcome) << text.substr(0, 200);
}

TEST_F(GainFileTest, ALookUpNeedsAllFourKeyFields) {
    Read("h,h,h,h,h\r\nm1,A,5180,-3.5,20MHz\r\nm1,B,5180,4,20MHz\r\n");
    const GainListNode* found = m_list.Find({"m1", "A", 5180, "20MHz", 0});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->gain, -3.5);
    EXPECT_EQ(found->deviceMac + found->chain + found->bandwidth, "m1A20MHz");
    const GainListNode absent[] = {{"m2", "A", 5180, "20MHz", 0},   {"m1", "AB", 5180, "20MHz", 0},
                                   {"m1", "A", 5180.5, "20MHz", 0}, {"m1", "A", 5180, "20", 0},
                                   {"m1,A", "", 5180, "20MHz", 0},  {"m1", "A", NAN, "20MHz", 0}};
    for (const GainListNode& key : absent)
        EXPECT_FALSE(m_list.Find(key)) << key.deviceMac << key.chain << key.channel << key.bandwidth;
    m_list.Clear();
    EXPECT_TRUE(m_list.IsEmpty() && !m_list.Find({"m1", "B", 5180, "20MHz", 0}));
}

TEST_F(GainFileTest, WhatIsNoFileOrIsALinkIsNamedInTheMessage) {
    for (const std::string& path :
         {m_folder.Path().string(), m_folder / "absent", std::string("/dev/zero"), std::string()})
        EXPECT_EQ(ReadPath(path), "Failed opening " + path + " file|");
    Read(Header);
    const std::string link = m_folder / "link";
    fs::create_symlink("GainCSV.csv", link);
    EXPECT_EQ(ReadPath(link), "File " + link + " is a link|");
    fs::remove(m_folder / "GainCSV.csv");
    EXPECT_EQ(ReadPath(link), "Failed opening " + link + " file|");
}

}  // namespace

// Parameters in file names, and the exceptions in which a bad sample ends.
#include "Stores/AdcFile.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "Support/TempFolder.h"
#include "Support/Thrown.h"

namespace {

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

TEST(AdcFile, ABadSampleEndsInTheConversionsFailure) {
    const Support::TempFolder folder;
    const std::string path = folder / "samples.txt";
    double i[3], q[3];
    const auto failure = [&](const std::string& text) {
        folder.Write("samples.txt", text);
        return Support::ThrownText([&] { EXPECT_EQ(AdcFile::ReadAdcFile(path, i, q, 3), 2u); });
    };
    EXPECT_EQ(failure("1 ,2\n-3 ,4"), "nothing thrown");
    EXPECT_TRUE(i[1] == -3 && q[1] == 4);
    EXPECT_EQ(failure("1 ,2\nx\n"), "invalid stod argument");
    EXPECT_EQ(failure("1 ,1e400\n"), "stod argument out of range");
    EXPECT_EQ(failure("1 ,2\n" + std::string(2000000, '7')), path + ":2: the line has no end within 1048576 bytes");
    EXPECT_THROW(AdcFile::SetIQFromLine(i, q, "1 2"), std::invalid_argument);
    EXPECT_FALSE(AdcFile::ReadAdcFile(testing::TempDir(), i, q, 1));
}

}  // namespace

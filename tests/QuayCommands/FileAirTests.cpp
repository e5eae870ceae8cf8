#include "Air/FileAir.h"
#include "TestRadio.h"

using namespace radiotest;

namespace {

TEST(StoredCaptures, EachChainTakesTheNextFileInTheOrderOfNamesAndStartsOver) {
    const Folder folder;
    folder.Write("b.txt", "3 ,4\n5 ,6");
    folder.Write("a.txt", "1 ,2\n");
    folder.Write("c.txt", "7 ,8\n9 ,10\n11 ,12\n");
    folder.Write("result.csv", "not a sample");
    folder.Write(".hidden", "not a sample");
    std::filesystem::create_directory((folder / "inner"));
    UseRadio("samples=1024", "file:" + folder.Path().string());
    EXPECT_EQ(quayCommand::DescribeAir(), "stored captures: 3 file(s) of " + folder.Path().string());
    const auto both = Capture({0, 0, 6, 3});  // a, b
    EXPECT_EQ(both[0][0], std::complex(1.0, 2.0));
    EXPECT_EQ(both[1][1], std::complex(5.0, 6.0));
    EXPECT_EQ(both[1][2], std::complex<double>()) << "zeros behind a short capture";
    EXPECT_EQ(both[1].back(), std::complex<double>());
    EXPECT_EQ(Capture({1, 2, 42, 2, 1, 5})[0][2], std::complex(11.0, 12.0)) << "c, whatever the tuning";
    EXPECT_EQ(Capture({})[0][0], std::complex(1.0, 2.0)) << "a again";
    EXPECT_FALSE(quayCommand::SetRadioWorkload(true)) << "stored captures know no workload";
    std::vector<double> i(3, 9.0), q(3, 9.0);  // as a capture before left them
    quayCommand::ChainCapture chain{0, 0.0, i, q};
    ASSERT_TRUE(quayCommand::FileAir::Open(folder / "a.txt", quayCommand::StoredTuning::AsTuned)
                    ->Capture({2437, 40, 20, {&chain, 1}}));
    EXPECT_EQ(std::pair(i, q), (std::pair<std::vector<double>, std::vector<double>>{{1, 0, 0}, {2, 0, 0}}));
}

TEST(StoredCaptures, AreHeardOnlyOnTheChannelWidthAndChainOfTheirNames) {
    const Folder folder;
    folder.Write("BAND_2.4_CHANNEL_6_BW_20_CHAIN_A_1.txt", "1 ,0");
    folder.Write("BAND_2.4_CHANNEL_6_BW_20_CHAIN_A_2.txt", "2 ,0");
    folder.Write("BAND_2.4_CHANNEL_6_BW_20_CHAIN_B_1.txt", "3 ,0");
    folder.Write("x_CHAIN_AB_BAND_5_BW_40_CHANNEL_38_.txt", "4 ,0");
    folder.Write("notes.txt", "no tuning and no sample");
    ASSERT_EQ(ReasonOf({"samples=1024", "file:" + folder.Path().string(), "", ""}), "accepted");
    const std::pair<Tuning, std::vector<double>> cases[] = {
        {{0, 0, 6, 3}, {1, 3}}, {{0, 0, 6, 1}, {2}}, {{0, 0, 6, 1}, {1}},  // from the first again
        {{1, 1, 38, 2}, {4}},   {{0, 0, 7, 1}, {}},  {{0, 1, 6, 1}, {}}};  // another channel, another width
    for (const auto& [tuning, expected] : cases) {
        std::vector<double> heard;
        for (const auto& chain : Capture(tuning))
            heard.push_back(chain[0].real());
        EXPECT_EQ(heard, expected) << tuning.band << " " << tuning.bandwidth << " " << tuning.channel;
    }
    EXPECT_EQ(quayCommand::CaptureTrouble(),
              "no stored capture at 2437 MHz, 40 MHz wide, on chain A in " + folder.Path().string());
    for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
             {"BAND_5.2_CHANNEL_37_BW_20_CHAIN_A_.txt",
              "its name tells band 5.2, channel 37 and width 20, which don't exist"},
             {"BAND_5.2_CHANNEL_36_BW_20_CHAIN_C_.txt", "its name tells chain C, not A, B or AB"},
             {"air.txt",
              "no file name tells a tuning, such as BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_1.txt; other captures can only "
              "be heard as tuned"},
         }) {
        const auto path = folder.Write(name, "1 ,2");
        EXPECT_EQ(ReasonOf({"", "file:" + path, "", ""}), "air: " + path + ": " + reason);
    }
}

TEST(StoredCaptures, AFileLongerThanTheCaptureIsCut) {
    const Folder folder;
    std::string text;
    for (int n = 0; n < 3000; ++n)
        text += std::to_string(n) + " ," + std::to_string(-n) + "\n";
    UseRadio("samples=2000", "file:" + folder.Write("long.txt", text));
    const auto x = Capture({}).at(0);
    ASSERT_EQ(x.size(), 2000u);
    EXPECT_EQ(x.back(), std::complex(1999.0, -1999.0));
}

TEST(StoredCaptures, ABadFileIsRefusedWithItsLine) {
    const Folder folder;
    for (const auto& [text, place] : std::vector<std::pair<std::string, std::string>>{
             {"1 ,2\n3 ,4\nfive ,6\n", ":3: I isn't a number"},
             {"32767.9 ,-32768.9\n0 ,32768\n", ":2: I or Q isn't a code of 16 bits"},
             {"1 ,nan\n", ":1: I or Q isn't a code of 16 bits"},
             {"", ": holds no samples"},
         }) {
        const auto path = folder.Write("BAND_2.4_CHANNEL_6_BW_20_CHAIN_A_bad.txt", text);
        EXPECT_EQ(ReasonOf({"", "file:" + path, "", ""}), "air: " + path + place);
    }
    std::filesystem::remove(folder / "BAND_2.4_CHANNEL_6_BW_20_CHAIN_A_bad.txt");
    EXPECT_EQ(ReasonOf({"", "file:" + folder.Path().string(), "", ""}),
              "air: " + folder.Path().string() + ": no sample file in this folder");
    EXPECT_EQ(ReasonOf({"", "file:" + (folder / "none.txt"), "", ""}),
              "air: " + (folder / "none.txt") + ": can't be read");
}

}  // namespace

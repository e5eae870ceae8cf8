// A measurement against a scripted device: what is asked, in what order, and what comes of the answers.
#include "Measurement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "Picture.h"
#include "Report.h"

namespace {

using namespace TarnMeasure;

const std::string config = "1\n2\n(1,LB),1,0,0,0,0\n(6,LB),1,1,0,0,0\n(36,HB),1,0,0,0,0\n(37,UHB),1,0,0,0,0\n";

/// Answers keys as a one-chain device would whose every bin holds `level`, and keeps the lines it got.
struct Device {
    double level_dbm = -100;
    int bins = 1024;
    int failAtTrigger = 0;  // 1 for the first
    double highestCode = 20;
    int triggers = 0;
    std::vector<std::string> lines;

    Answer operator()(const std::string& line) {
        lines.push_back(line);
        if (line == "-get_supported_config") return {true, config};
        if (line == "-trigger_now" && ++triggers == failAtTrigger) return {false, "Received empty ADC Samples."};
        if (line == "-update_peaks") return {true, "2437.5 -80 2440 -90.5 2442 -91\n"};
        if (line == "-update_iq") return {true, "1 -2 3\n4 " + ShortText(highestCode) + " 5"};
        if (line.starts_with("-update_")) {
            std::string text;
            for (int k = 0; k < bins; ++k)
                text += (k ? " " : "") + ShortText(level_dbm);
            return {true, text};
        }
        return {true, ""};
    }
};

Result MeasureOn(const Request& request, Device& device, std::size_t stopAfter = 1000) {
    return Measure(request, std::ref(device), [&](std::size_t done, std::size_t, auto) { return done < stopAfter; });
}

TEST(Measurement, ChannelPowerAddsTheChannelsBinsAndNothingBeside) {
    std::vector<double> spectrum(1024, -100.0);  // 40 MHz span, 20 MHz channel: 513 bins
    EXPECT_NEAR(ChannelPowerDbm(spectrum, 20, 40), -100 + 10 * std::log10(513), 1e-9);
    spectrum[512 - 257] = spectrum[512 + 257] = 0.0;  // just outside
    EXPECT_NEAR(ChannelPowerDbm(spectrum, 20, 40), -100 + 10 * std::log10(513), 1e-9);
    spectrum[512 - 256] = -40.0;  // just inside
    EXPECT_NEAR(ChannelPowerDbm(spectrum, 20, 40), -40.0, 1e-2);
    EXPECT_NEAR(ChannelPowerDbm(std::vector<double>(1024, -100.0), 40, 40), -100 + 10 * std::log10(1025), 1e-9)
        << "at full span the outermost bin stands on both sides, as the engine counts it";
    for (const int bins : {1, 2, 7, 1024})  // a channel wider than the span: nothing beyond the spectrum is read
        EXPECT_NEAR(ChannelPowerDbm(std::vector<double>(bins, -100.0), 160, 40),
                    -100 + 10 * std::log10(2 * (bins / 2) + 1), 1e-9);
}

TEST(Measurement, APlanNamesWhatTheDeviceLacks) {
    struct Case {
        const char *band, *channels, *bandwidth, *expected;
    };
    const Case cases[] = {{"2.4", "all", "20", "1 6"},
                          {"2.4", "", "40", "6"},
                          {"2.4", "6,1,6", "20", "6 1"},
                          {"5", "36", "20", "36"},
                          {"6-7", "all", "20", "37"},
                          {"2.4", "7", "20", "channel 7 isn't in band 2.4 at 20 MHz; there are 1, 6"},
                          {"2.4", "6x", "20", "'6x' is no channel number; write numbers split by commas, or 'all'"},
                          {"7", "all", "20", "band '7' isn't one of 2.4, 5.2, 6-7"},
                          {"5.2", "all", "60", "bandwidth '60' isn't one of 20, 40, 80, 160, 320"},
                          {"6-7", "all", "320", "this adapter has no channel in band 6-7 at 320 MHz"}};
    for (const Case& expected : cases) {
        Request request;
        request.band = expected.band;
        request.channels = expected.channels;
        request.bandwidth = expected.bandwidth;
        const Plan plan = MakePlan(request, config);
        std::string text = plan.refusal;
        for (const int channel : plan.channels)
            text += (text.empty() ? "" : " ") + std::to_string(channel);
        EXPECT_EQ(text, expected.expected);
    }
    Request request;
    request.average = true;
    request.sweeps = 101;
    EXPECT_NE(MakePlan(request, config).refusal, "");
}

TEST(Measurement, EachSweepTellsTheEngineHowManyItsAverageHolds) {
    Device device;
    Request request;
    request.channels = "6";
    request.sweeps = 3;
    request.average = request.maxHold = true;
    const Result result = MeasureOn(request, device);
    ASSERT_EQ(result.trouble, std::nullopt);
    const std::vector<std::string> expected = {"-get_supported_config",
                                               "-reset_config -band 2.4 -bandwidth 20",
                                               "-chain A -rbw 39.0625",
                                               "-maxhold true -channel_average true",
                                               "-channel 6",
                                               "-clear_average",
                                               "-channel_average_counter 0,0,0",
                                               "-trigger_now",
                                               "-update_spectrum",
                                               "-channel_average_counter 1,1,1",
                                               "-trigger_now",
                                               "-update_spectrum",
                                               "-channel_average_counter 2,2,2",
                                               "-trigger_now",
                                               "-update_spectrum",
                                               "-update_maxhold",
                                               "-update_channel_average",
                                               "-find_peaks 10",
                                               "-update_peaks",
                                               "-update_iq"};
    EXPECT_EQ(device.lines, expected);
    const ChainResult& chain = result.channels.at(0).chains.at(0);
    EXPECT_NEAR(chain.power_dbm, -100 + 10 * std::log10(513), 1e-9);
    ASSERT_EQ(chain.peaks.size(), 3U);
    EXPECT_EQ(chain.peaks[1].power_dbm, -90.5);
    EXPECT_EQ(chain.peaks[0].frequency_mhz, 2437 + 13 * 0.0390625) << "2437.5 lies 12.8 bins above the centre";
    EXPECT_EQ(result.channels[0].sampleRate_mhz, 40);
}

TEST(Measurement, WhatWasMeasuredSurvivesAFailureAndAnInterrupt) {
    Request request;
    request.channels = "all";
    request.sweeps = 2;
    Device failing;
    failing.failAtTrigger = 4;
    const Result failed = MeasureOn(request, failing);
    EXPECT_EQ(failed.trouble, "channel 6: Received empty ADC Samples.");
    ASSERT_EQ(failed.channels.size(), 2U);
    EXPECT_EQ(failed.channels[1].sweeps, 1) << "the sweep before the failure counts";

    Device device;
    const Result stopped = MeasureOn(request, device, 3);
    EXPECT_TRUE(stopped.interrupted);
    ASSERT_EQ(stopped.channels.size(), 2U);
    EXPECT_EQ(stopped.channels[1].sweeps, 1);
    EXPECT_NE(JsonText(stopped, -1).find("\"complete\":false"), std::string::npos);
}

TEST(Measurement, ACodeAtTheConvertersEndIsReportedWithEachReading) {
    const std::pair<double, bool> cases[] = {{32699, false}, {-32699, false}, {32767, true}, {-32768, true}};
    for (const auto& [code, overloaded] : cases) {
        Device device;
        device.highestCode = code;
        Request request;
        request.channels = "6";
        const Result result = MeasureOn(request, device);
        EXPECT_EQ(result.trouble, std::nullopt);
        EXPECT_EQ(result.channels.at(0).chains.at(0).overloaded, overloaded) << code;
        const std::string note = "channel 6 chain A: the converter is overloaded";
        EXPECT_EQ(TableText(result, 0).find(note) != std::string::npos, overloaded) << code;
        const std::string field = std::string("\"overloaded\":") + (overloaded ? "true" : "false");
        EXPECT_NE(JsonText(result, -1).find(field), std::string::npos) << code;
    }
}

TEST(Measurement, ReportsSayTheUnitOfEachNumberAndPutTheWorstChannelFirst) {
    Result result;
    result.request.channels = "all";
    for (const auto& [channel, power] : {std::pair{1, -80.0}, {6, -60.0}}) {
        ChannelResult& row = result.channels.emplace_back();
        row.channel = channel;
        row.centre_mhz = CentreMhz("2.4", channel);
        row.sampleRate_mhz = 40;
        ChainResult& chain = row.chains.emplace_back();
        chain.chain = "A";
        chain.power_dbm = power;
        chain.spectrum = {-100, -std::numeric_limits<double>::infinity()};
    }
    const std::string table = TableText(result, 0);
    EXPECT_LT(table.find("2437"), table.find("2412"));
    EXPECT_NE(table.substr(0, table.find('\n')).find("strongest first"), std::string::npos);
    EXPECT_NE(table.find("dBm/20MHz"), std::string::npos);
    EXPECT_NE(table.find("-73.0"), std::string::npos) << "-60 dBm in 20 MHz is -73 dBm in 1 MHz";
    EXPECT_EQ(CsvText(result).substr(0, 60), "Channel,Chain,Frequency [MHz],Spectrum [dBm/39.0625kHz],Max ");
    EXPECT_NE(CsvText(result).find("\n1,A,2392,-100,,\n1,A,2412,-inf,,\n"), std::string::npos);
    EXPECT_NE(JsonText(result, -1).find("\"spectrum_dbm\":[-100.0,null]"), std::string::npos);
}

TEST(Measurement, APictureIsWrittenWholeOrNotAtAll) {
    Device device;
    Request request;
    request.channels = "all";
    const Result result = MeasureOn(request, device);
    const auto folder = std::filesystem::temp_directory_path() / "tarn-picture-test";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    const std::pair<const char*, const char*> kinds[] = {{"a.png", "\x89PNG"}, {"a.svg", "<?xm"}, {"a.pdf", "%PDF"}};
    for (const auto& [name, magic] : kinds) {
        EXPECT_EQ(WritePicture(result, folder / name), std::nullopt);
        std::ifstream file(folder / name, std::ios::binary);
        std::string start(4, '\0');
        file.read(start.data(), 4);
        EXPECT_EQ(start, magic);
    }
    EXPECT_NE(WritePicture(result, folder / "a.jpg"), std::nullopt);
    EXPECT_NE(WritePicture(result, folder / "missing" / "a.png"), std::nullopt);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 3) << "no scratch file stays";
    std::filesystem::remove_all(folder);
}

}  // namespace

// A measurement against a scripted device: what is asked, in what order, and what comes of the answers.
#include "Measurement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "Axes.h"
#include "Inputs.h"
#include "Peaks.h"
#include "Picture.h"
#include "PlainText.h"
#include "Report.h"

namespace {

using namespace TarnMeasure;

const std::string config = "1\n2\n(1,LB),1,0,0,0,0\n(6,LB),1,1,0,0,0\n(36,HB),1,0,0,0,0\n(37,UHB),1,0,0,0,0\n";

/// Answers keys as a device would whose every bin holds a level of its chain, and keeps the lines it got.
struct Device {
    std::vector<double> levels_dbm = {-100};  // of each sweep in turn, the last for all further ones
    int chains = 1;                           // each chain is 3 dB below the one before
    int bins = 1024;
    int failAtTrigger = 0;  // 1 for the first
    int interruptAtTrigger = 0;
    std::string failure, warnAt, answerTo, answer;
    std::vector<double> highestCodes = {20};  // of each sweep in turn
    std::size_t triggers = 0;
    std::vector<std::string> lines;

    template <typename T>
    T OfSweep(const std::vector<T>& values) const {
        return values[std::min(triggers, values.size()) - 1];
    }

    Answer operator()(const std::string& line) {
        lines.push_back(line);
        if (line == "-get_supported_config") return {true, config};
        if (line == answerTo) return {true, answer};
        if (line == warnAt) return {true, "", "set-up failed"};
        if (line == "-trigger_now") {
            ++triggers;
            if (triggers == static_cast<std::size_t>(failAtTrigger)) return {false, "Received empty ADC Samples."};
            if (triggers == static_cast<std::size_t>(interruptAtTrigger)) return {false, "", "", true};
        }
        std::string text;
        for (int c = 0; c < chains && line == "-update_histogram"; ++c)
            text += "1 2\n1 1\n0 1\n-3 " + ShortText(OfSweep(highestCodes) - 10000 * c) + "\n";
        for (int c = 0; c < chains && line == "-update_spectrum"; ++c) {
            for (int k = 0; k < bins; ++k)
                text += (k ? " " : "") + ShortText(OfSweep(levels_dbm) - 3 * c + (k == 600 ? 20 : 0));
            text += '\n';
        }
        return {true, text};
    }
};

Request OnChannel6() {
    Request request;
    request.channels = "6";
    return request;
}

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
    const Case cases[] = {{"2.4", "all", "20", "2.4: 1 6"},
                          {"2.4", "", "40", "2.4: 6"},
                          {"2.4", "6, 1,6", "20", "2.4: 6 1"},
                          {"2.4", "2-9,1-6", "20", "2.4: 6 1"},
                          {"5", "36", "20", "5.2: 36"},
                          {"", "36", "20", "5.2: 36"},
                          {"", "37", "20", "6-7: 37"},
                          {"", "all", "20", "2.4: 1 6"},
                          {"6-7", "all", "20", "6-7: 37"},
                          {"", "99", "20",
                           "channel 99 isn't in band 2.4 at 20 MHz; there are 1, 6 (--band names another "
                           "band)"},
                          {"2.4", "7", "20", "channel 7 isn't in band 2.4 at 20 MHz; there are 1, 6"},
                          {"2.4", "6x", "20", "'6x' is no channel number; write numbers such as 1,6,36-48, or 'all'"},
                          {"2.4", "6-1", "20", "'6-1' is no channel number; write numbers such as 1,6,36-48, or 'all'"},
                          {"9", "all", "20", "band '9' isn't one of 2.4, 5.2, 6-7"},
                          {"5.2", "all", "60", "bandwidth '60' isn't one of 20, 40, 80, 160, 320"},
                          {"6-7", "all", "320", "this adapter has no channel in band 6-7 at 320 MHz"}};
    for (const Case& expected : cases) {
        Request request;
        request.band = expected.band;
        request.channels = expected.channels;
        request.bandwidth = expected.bandwidth;
        const auto plan = MakePlan(request, config);
        std::string text = plan ? plan->band + ":" : plan.Reason();
        for (const int channel : plan ? plan->channels : std::vector<int>{})
            text += " " + std::to_string(channel);
        EXPECT_EQ(text, expected.expected);
    }
}

TEST(Measurement, TheMeansAreMeansOfPowerChainByChain) {
    Device device;
    device.chains = 2;
    device.levels_dbm = {-100, -90, -80};
    Request request = OnChannel6();
    request.sweeps = 3;
    request.chain = "AB";
    request.average = request.maxHold = true;
    request.setup = "-internal_gain 2";
    const Result result = MeasureOn(request, device);
    ASSERT_EQ(result.trouble, std::nullopt);
    const std::vector<std::string> start = {"-get_supported_config",  "-reset_config -band 2.4 -bandwidth 20",
                                            "-chain AB -rbw 39.0625", "-internal_gain 2",
                                            "-histogram true",        "-channel 6",
                                            "-trigger_now",           "-update_spectrum",
                                            "-update_histogram"};
    ASSERT_EQ(device.lines.size(), start.size() + 6);
    EXPECT_TRUE(std::equal(start.begin(), start.end(), device.lines.begin()));
    const double mean = 10 * std::log10((1e-10 + 1e-9 + 1e-8) / 3), bins = 10 * std::log10(512 + 100.0);
    ASSERT_EQ(result.channels.at(0).chains.size(), 2U);
    EXPECT_EQ(result.channels[0].sampleRate_mhz, 40);
    for (std::size_t c = 0; c < 2; ++c) {
        const ChainResult& chain = result.channels[0].chains[c];
        const double shift = -3.0 * static_cast<double>(c);
        EXPECT_EQ(chain.chain, c == 0 ? "A" : "B");
        EXPECT_NEAR(chain.power_dbm, mean + bins + shift, 1e-6);
        EXPECT_NEAR(chain.lowest_dbm, -100 + bins + shift, 1e-6);
        EXPECT_NEAR(chain.highest_dbm, -80 + bins + shift, 1e-6);
        EXPECT_NEAR(chain.average.at(0), mean + shift, 1e-9);
        EXPECT_EQ(chain.maxHold.at(0), -80 + shift);
        EXPECT_EQ(chain.spectrum.at(600), -60 + shift);
        ASSERT_EQ(chain.peaks.size(), 1U);
        EXPECT_EQ(chain.peaks[0].power_dbm, -60 + shift);
        EXPECT_EQ(chain.peaks[0].frequency_mhz, 2437 + 88 * 0.0390625);
    }
}

TEST(Measurement, PeaksStandOutOfTheirSurroundingsUpToTheEdges) {
    std::vector<double> graph(200, -100.0);
    for (std::size_t k = 0; k < graph.size(); ++k)
        graph[k] += static_cast<double>(k * 7919 % 13) / 4 - 1.5;  // noise of 3 dB
    EXPECT_TRUE(PeakBins(graph, 6).empty());
    graph[1] = -80;
    graph[100] = graph[101] = -70;  // one flat top
    graph[103] = -75;               // a shoulder: no dip of 6 dB before it
    graph[102] = -76;
    graph[198] = -93;
    EXPECT_EQ(PeakBins(graph, 6), (std::vector<std::size_t>{100, 1, 198}));
    std::fill(graph.begin() + 40, graph.begin() + 160, -60.0);  // a broad signal is no line
    EXPECT_EQ(PeakBins(graph, 6), (std::vector<std::size_t>{1, 198}));
    EXPECT_TRUE(PeakBins({}, 6).empty());
}

TEST(Measurement, WhatWasMeasuredSurvivesAFailureAndAnInterrupt) {
    Request request;
    request.band = "2.4";
    request.channels = "all";
    request.sweeps = 2;
    request.limits = *Limits::OfLevel(-10);
    Device failing, stopped, hanging;
    failing.failAtTrigger = hanging.interruptAtTrigger = 4;
    const Result results[] = {MeasureOn(request, failing), MeasureOn(request, stopped, 3), MeasureOn(request, hanging)};
    EXPECT_EQ(results[0].trouble, "channel 6: Received empty ADC Samples.");
    for (const Result& result : results) {
        EXPECT_EQ(result.interrupted, !result.trouble);
        ASSERT_EQ(result.channels.size(), 2U);
        EXPECT_EQ(result.channels[1].sweeps, 1) << "the sweep before the end counts";
        EXPECT_EQ(result.channels[1].chains[0].judgement->verdict, Verdict::Invalid) << "one sweep of two";
        EXPECT_EQ(result.channels[0].chains[0].judgement->verdict, Verdict::Pass);
        EXPECT_NE(JsonText(result, -1).find("\"sweeps\":1,\"sweeps_asked\":2"), std::string::npos);
        EXPECT_NE(JsonText(result, -1).find("\"complete\":false"), std::string::npos);
        EXPECT_NE(TableText(result, 0).find(" 1/2 "), std::string::npos);
    }
    EXPECT_EQ(hanging.lines.back(), "-trigger_now") << "no line follows one that was given up";
}

TEST(Measurement, AChannelWhoseSetUpFailedShowsNoLevel) {
    Device device;
    device.warnAt = "-channel 6";
    Request request;
    request.band = "2.4";
    request.channels = "all";
    request.limits = *Limits::OfLevel(-10);
    const Result result = MeasureOn(request, device);
    EXPECT_TRUE(result.HasInvalid());
    EXPECT_EQ(result.Worst(), Verdict::Invalid);
    ASSERT_EQ(result.channels.size(), 2U);
    EXPECT_EQ(result.channels[0].invalid, "");
    EXPECT_NE(TableText(result, 0).find("channel 6: not measured: set-up failed"), std::string::npos);
    EXPECT_EQ(JsonText(result, -1).find("power_dbm", JsonText(result, -1).find("\"channel\":6")), std::string::npos);
    EXPECT_EQ(CsvText(result).find("\n6,"), std::string::npos);
    device.warnAt = "-chain A -rbw 39.0625";
    EXPECT_EQ(MeasureOn(request, device).trouble, "set-up failed");
}

TEST(Measurement, AGainFileIsLookedUpForEachChannelOrRefused) {
    Request request = OnChannel6();
    request.gainFile = "\"g.csv\"";
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"-set_gain_from_file", "Gain data was loaded successfully from the file", ""},
        {"-set_gain_from_file", " ", "channel 6: the gain file has no row for this device, chain, frequency and width"},
        {"-set_gain_from_file", "Could not use it", "channel 6: Could not use it"},
        {"-gain_file_name \"g.csv\"", "Failed opening g.csv file", "channel 6: Failed opening g.csv file"}};
    for (const auto& [line, answer, trouble] : cases) {
        Device device;
        device.answerTo = line;
        device.answer = answer;
        EXPECT_EQ(MeasureOn(request, device).trouble.value_or(""), trouble);
    }
}

TEST(Measurement, ACodeAtTheConvertersEndIsCountedAndReportedWithEachReading) {
    const std::pair<double, int> cases[] = {{32699, 0}, {-32699, 0}, {32767, 2}, {-32768, 2}, {std::nan(""), 2}};
    for (const auto& [code, overloaded] : cases) {
        Device device;
        device.chains = 2;
        device.highestCodes = {code, 20, code, 20};
        Request request = OnChannel6();
        request.chain = "AB";
        request.sweeps = 4;
        const Result result = MeasureOn(request, device);
        EXPECT_EQ(result.channels.at(0).chains.at(0).overloadedSweeps, overloaded) << code;
        const std::string note = "channel 6 chain A: the converter was overloaded in 2 of 4 sweeps";
        const std::string field = "\"overloaded_sweeps\":" + std::to_string(overloaded);
        EXPECT_EQ(TableText(result, 0).find(note) != std::string::npos, overloaded > 0) << code;
        EXPECT_EQ(CsvText(result).find(note) != std::string::npos, overloaded > 0) << code;
        EXPECT_NE(JsonText(result, -1).find(field), std::string::npos) << code;
    }
}

TEST(Measurement, ReportsSayTheUnitOfEachNumberAndPutTheWorstChannelFirst) {
    Result result;
    result.request.band = "2.4";
    result.provenance.command = "tarn measure\n\x1b[2J";
    for (const auto& [channel, power] : {std::pair{1, -80.0}, {6, -60.0}}) {
        ChannelResult& row = result.channels.emplace_back();
        row.channel = channel;
        row.centre_mhz = CentreMhz("2.4", channel);
        row.sampleRate_mhz = 40;
        row.sweeps = result.request.sweeps;
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
    EXPECT_TRUE(CsvText(result).starts_with("# command: tarn measure??[2J\n# settings: Band 2.4 GHz, 2 channels"));
    EXPECT_NE(CsvText(result).find("\nChannel,Chain,Frequency [MHz],Spectrum [dBm/39.0625kHz],Max "),
              std::string::npos);
    EXPECT_NE(CsvText(result).find("\n1,A,2392,-100,,\n1,A,2412,-inf,,\n"), std::string::npos);
    EXPECT_NE(JsonText(result, -1).find("\"spectrum_dbm\":[-100.0,null]"), std::string::npos);
}

TEST(Inputs, TakeWhatAPersonMeans) {
    EXPECT_EQ(*ReadBand("5 GHz"), "5.2");
    EXPECT_EQ(*ReadBand("6"), "6-7");
    EXPECT_EQ(*ReadBandwidth("20MHz"), "20");
    EXPECT_EQ(*ReadChain("ab"), "AB");
    EXPECT_EQ(*ReadChain("b+A"), "AB");
    for (const auto& [text, rbw] :
         {std::pair{"39", 39.0625}, {"39.06250", 39.0625}, {"312 kHz", 312.5}, {"78.125", 78.125}})
        EXPECT_EQ(*ReadRbw(text), rbw);
    EXPECT_EQ(ReadRbw("40").Reason(), "resolution bandwidth '40' isn't one of 39.0625, 78.125, 156.25, 312.5");
    EXPECT_FALSE(ReadBand("5.20"));
    EXPECT_FALSE(ReadBandwidth("60"));
    EXPECT_FALSE(ReadChain(""));
    EXPECT_FALSE(ReadRbw("nan"));
}

TEST(PlainText, NothingSteersATerminal) {
    EXPECT_EQ(Printable("a\x1b[2Jb\r\n\x7F\t"), "a?[2Jb????");
    EXPECT_EQ(Printable("gr\xC3\xBCn \xF0\x9F\x98\x80"), "gr\xC3\xBCn \xF0\x9F\x98\x80");
    EXPECT_EQ(Printable("\xC2\x9B"
                        "1m"),
              "?1m")
        << "a control character of eight bits";
    EXPECT_EQ(Printable("\xE2\x80\xAEx\x9B\xC0\xAF\xED\xA0\x80\xC3"), "?x???????")
        << "direction, stray and overlong bytes";
    EXPECT_EQ(PrintableLines("a\n\tb\r"), "a\n\tb?");
}

TEST(Picture, AxesPlaceFrequenciesAndLevelsInTheirBox) {
    const Axes axes({100, 50, 300, 250}, {2412, 2432}, {-120, -20});
    EXPECT_DOUBLE_EQ(axes.X(2427), 250);
    EXPECT_DOUBLE_EQ(axes.Y(-20), 50);
    EXPECT_DOUBLE_EQ(axes.Y(-95), 200);
    EXPECT_DOUBLE_EQ(axes.Y(std::nan("")), 250);
    EXPECT_DOUBLE_EQ(axes.Y(-1e300), 450) << "outside, yet a number that a file can hold";
    EXPECT_EQ(Ticks({-118, -20}, 5), (std::vector<double>{-100, -80, -60, -40, -20}));
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
        EXPECT_TRUE(WritePicture(result, folder / name));
        std::ifstream file(folder / name, std::ios::binary);
        std::string start(4, '\0');
        file.read(start.data(), 4);
        EXPECT_EQ(start, magic);
    }
    EXPECT_FALSE(WritePicture(result, folder / "a.jpg"));
    EXPECT_FALSE(WritePicture(result, folder / "missing" / "a.png"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 3) << "no scratch file stays";
    std::filesystem::remove_all(folder);
}

}  // namespace

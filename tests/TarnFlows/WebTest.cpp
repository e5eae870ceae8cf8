// The front-end variant: its messages byte by byte, and which answers stay text.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FlowsTest.h"
#include "KeyTable.h"

namespace {

using Texts = std::vector<std::string>;

/// Numbers as a message's array holds them, by the C library.
std::string Numbers(const char* format, const double* values, std::size_t count) {
    std::string text;
    for (std::size_t k = 0; k < count; ++k) {
        char number[400];
        std::snprintf(number, sizeof number, format, values[k]);
        text.append(k == 0 ? "" : ", ").append(number);
    }
    return "[" + text + "]";
}

/// True when `text` is `pattern`, in which "..." stands for any run without quotes and brackets.
bool Matches(std::string_view text, std::string_view pattern) {
    const std::size_t gap = pattern.find("...");
    if (!text.starts_with(pattern.substr(0, gap))) return false;
    if (gap == std::string_view::npos) return text == pattern;
    text.remove_prefix(gap);
    pattern.remove_prefix(gap + 3);
    for (std::size_t skipped = 0; skipped <= text.size(); ++skipped) {
        if (Matches(text.substr(skipped), pattern)) return true;
        if (skipped < text.size() && std::string_view("\"[]").find(text[skipped]) != std::string_view::npos) break;
    }
    return false;
}

class WebTest : public FlowsTest {
protected:
    /// An adapter that hears 1024 stored samples; nothing of what Init sends is left.
    void StartWeb(const std::string& adapter = "samples=1024") {
        std::string samples;
        for (int n = 0; n < 1024; ++n)
            samples += std::to_string(37 * n % 2001 - 1000) + " ," + std::to_string(53 * n % 1777 - 888) + "\n";
        Write("air.txt", samples);
        m_air = "file:" + Path("air.txt");
        m_web.reset();
        Place(adapter);
        m_web = std::make_unique<TarnWifiFlowsWeb>(&m_host);
        m_web->Init();
        m_host.texts.clear();
    }
    /// What a line sends to the host.
    Texts Send(std::string line, bool plain = false) {
        m_host.texts.clear();
        std::string error;
        m_web->RunCommand(line, m_output, error, plain);
        return std::move(m_host.texts);
    }
    static Texts Object(const std::string& type, const std::string& data) {
        return {R"(object {"type": ")" + type + R"(", "data": )" + data + "}"};
    }
    static std::string Status(const std::string& text) { return R"({"status": ")" + text + R"("})"; }

    std::unique_ptr<TarnWifiFlowsWeb> m_web;
    std::string m_output;  ///< text answer of the last line
};

/// A command line of the protocol's description and the messages that it shows behind it.
struct Example {
    std::string line;
    Texts messages;
};

std::vector<Example> ExamplesOf(const Texts& document) {
    std::vector<Example> examples;
    bool isInside = false;  // a block of lines and messages
    for (const std::string& line : document) {
        isInside = line.starts_with("> ") || (isInside && !line.starts_with("```"));
        if (!isInside) continue;
        if (line.starts_with("> "))
            examples.push_back({line.substr(2), {}});
        else if (line.starts_with("  "))
            examples.back().messages.back() += line.substr(2);  // a long message goes on
        else
            examples.back().messages.push_back((line.starts_with('{') ? "object " : "") + line);
    }
    return examples;
}

TEST_F(WebTest, TheExamplesOfTheProtocolsDescriptionAreWhatIsSent) {
    StartWeb("samples=1024,bands=0");
    const auto examples = ExamplesOf(Lines(ReadFile(TARN_DOCS "/protocol.md")));
    EXPECT_GT(examples.size(), 20u);
    for (const Example& example : examples) {
        SCOPED_TRACE(example.line);
        const Texts sent = Send(example.line);
        ASSERT_EQ(sent.size(), example.messages.size());
        for (std::size_t k = 0; k < sent.size(); ++k) {
            EXPECT_TRUE(Matches(sent[k], example.messages[k])) << sent[k].substr(0, 2000) << "\n"
                                                               << example.messages[k];
            EXPECT_TRUE(sent[k].starts_with("error ") || nlohmann::json::accept(sent[k].substr(7)));
        }
    }
}

TEST_F(WebTest, ATriggerSendsEveryNumberOfItsChains) {
    StartWeb();
    const Texts sent = Send("-rbw 312.5 -histogram true -channel_average true -maxhold true -chain AB -trigger_now");
    ASSERT_EQ(sent.size(), 6u);
    const auto& engine = *m_web->GetLmnSA();
    std::string spectrum, codes, histogram, average;
    for (std::size_t c = 0; c < 2; ++c) {
        const std::string chain = std::string(c == 0 ? "" : ",") + R"({"chain": "AB",)";
        const auto bins = [&](const double* values) { return Numbers("%f", values, 128); };
        const auto counts = [&](const double* values) { return Numbers("%f", values, 20); };
        spectrum += chain + R"("data": )" + bins(engine.m_Spectrum[c]->val) + R"(, "averageData": )" +
                    bins(engine.m_Average[c]->val) + R"(, "maxData": )" +
                    bins(engine.m_MaxHold[c][engine.m_ChannelIndex]->val) + "}";
        codes += chain + R"("IData": )" + Numbers("%f", engine.m_ISweep[c]->val, 1024) + R"(,"QData": )" +
                 Numbers("%f", engine.m_QSweep[c]->val, 1024) + "}";
        histogram += chain + R"("IQData": )" + counts(engine.m_Histogram[c]->val) + R"(,"IData": )" +
                     counts(engine.m_HistogramI[c]->val) + R"(,"QData": )" + counts(engine.m_HistogramQ[c]->val) +
                     R"(,"IQMinMax": )" + Numbers("%f", &engine.m_HistogramRange[c]->first, 1);
        histogram.pop_back();
        histogram += ", " + Numbers("%f", &engine.m_HistogramRange[c]->second, 1).substr(1) + "}";
        average += R"(,"data)" + std::to_string(c) + R"(": )" + Numbers("%g", engine.m_Average[c]->val, 128);
    }
    // Long texts: a failure names the message alone.
    EXPECT_TRUE(sent[3] == Object("Spectrum Data", "[" + spectrum + "]")[0]);
    EXPECT_TRUE(sent[4] == Object("IQ Amplitude Data", "[" + codes + "]")[0]);
    EXPECT_TRUE(sent[5] == Object("Histogram Data", "[" + histogram + "]")[0]);
    EXPECT_EQ(Send("-get_channel_average -update_channel_average"),
              Object("Spectrum Data Average", R"({"chain": "AB")" + average + "}"));
    EXPECT_EQ(m_output, "");  // a message takes the text answer's place
}

/// Keys that answer in messages with either output; and the whole burn-in test, which ends in one.
constexpr std::string_view AlwaysMessages =
    "-start_vesper_test -stop_vesper_test -resume_vesper_test -vesper_get_channel_data -vesper_set_config_file";

TEST_F(WebTest, WithPlainOutputEveryLineAnswersAsThePlainVariantAndSendsNothing) {
    StartWeb();
    m_flows->Init();
    std::filesystem::create_directory("in");
    for (const auto& row : TarnKeys::Keys())
        for (const char* argument : {"", "true", "10", "A", "in", "-90,-90,-90"}) {
            if (row.argument.kind == TarnKeys::ArgumentKind::None && *argument) continue;
            if (AlwaysMessages.find(row.name) != std::string_view::npos) continue;
            std::string line = std::string(row.name) + " " + argument;
            const Answer plain = Run(line);
            EXPECT_EQ(Send(line, true), Texts{}) << line;
            EXPECT_EQ(m_output, plain.output) << line;
        }
}

TEST_F(WebTest, AnUpdateThatFailsGoesToTheErrorLine) {
    StartWeb();
    for (const auto& [key, text] : {std::pair{"-update_channel_average", "Failed updating MaxHold"},
                                    {"-update_iq", "Failed updating IQ"},
                                    {"-update_histogram", "Failed updating Histogram"}})
        EXPECT_EQ(Send(key), Texts{std::string("error ") + text});
    const Texts sent = Send("-update_spectrum");  // the power goes out first
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[1], "error Failed updating spectrum");
}

TEST_F(WebTest, OnlyTheStatusOfTheGainIsEscaped) {
    StartWeb();
    m_web->SetGainStatusResponse("a\"b\\c\nd\re\tf\x01");
    EXPECT_EQ(m_host.texts, Object("Gain Status", R"({"status": "a\"b\\c\nd\re\tf)"
                                                  "\x01\"}"));
    Write("gain.csv", "M,C,F,G,B\n02:54:41:52:4E:01,A,2412,5,20MHz\n");
    Send("-gain_file_name " + Path("gain.csv"));
    EXPECT_EQ(Send("-set_gain_from_file"),
              Object("Gain Status", Status("Gain data was loaded successfully from the file")));
    EXPECT_EQ(Send("-channel 6"), Texts{});
    EXPECT_EQ(Send("-set_gain_from_file"),
              Object("Gain Status", Status("Could not use gain data from a file. No gain matching was found on file")));
    EXPECT_EQ(Send("-set_gain_from_file"), Object("Gain Status", Status("Could not use gain data from a file")));
    m_host.texts.clear();
    m_web->GetPowerByChain("x\"\\y");
    EXPECT_EQ(m_host.texts, Object("Power Per Chain", R"({"chain": "x"\y","power": "0.000000"})"));
}

TEST_F(WebTest, NoiseFloorsAreTwoBeforeTheFirstCaptureAndOneForEachBandBehindIt) {
    StartWeb();
    EXPECT_EQ(Send("-noise_floor -91,0"), Texts{});
    EXPECT_EQ(m_output, "");
    EXPECT_EQ(m_web->GetLmnSA()->m_BandNoiseFloor, (std::array{-91, 0, 0}));
    Send("-noise_floor -91,-92,-93");
    EXPECT_EQ(m_output, "ERROR:incorrect number of noise floor values\n");
    Send("-trigger_now");
    Send("-noise_floor -91,-92,-93");
    EXPECT_EQ(m_output, "");
    EXPECT_EQ(m_web->GetLmnSA()->m_BandNoiseFloor, (std::array{-91, -92, -93}));
}

TEST_F(WebTest, ThePowerTableHoldsTheLastPowersOfEachChannelVisited) {
    StartWeb("samples=1024,antennas=3");
    m_web->SendPowerTableData();
    EXPECT_EQ(m_host.texts, Object("Power Table Data", "[]"));
    Send("-trigger_now");
    Send("-get_power_per_chain A", true);
    const std::string a = m_output;
    Send("-chain B -band 5.2 -channel 36 -trigger_now");
    Send("-get_power_per_chain B", true);
    const std::string b = m_output;
    m_host.texts.clear();
    m_web->SendPowerTableData();
    EXPECT_EQ(
        m_host.texts,
        Object("Power Table Data",
               R"([{"key": "1,20,2.4","value": {"channel": "1","frequency": "2412","bandwidth": "20","band": "2.4",)"
               R"("powerChainA": ")" +
                   a +
                   R"(","powerChainB": "None"}},{"key": "36,20,5","value": {"channel": )"
                   R"("36","frequency": "5180","bandwidth": "20","band": "5","powerChainA": "None","powerChainB": ")" +
                   b + R"("}}])"));
}

TEST_F(WebTest, AnAdapterWithOneAntennaHasOneChain) {
    StartWeb("samples=1024,antennas=1,card=64");
    EXPECT_EQ(Send("-get_supported_chains"), Object("Supported Chains Data", R"([{"value": "A", "label": "A"}])"));
}

}  // namespace

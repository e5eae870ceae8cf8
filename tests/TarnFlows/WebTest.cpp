// The front-end variant: its messages byte by byte, and which answers stay text.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FlowsTest.h"
#include "KeyTable.h"

namespace {

/// Numbers as a message's arrays hold them, by the C library; a blank behind each.
std::string Numbers(const char* format, const double* values, std::size_t count) {
    std::string text;
    for (std::size_t k = 0; k < count; ++k) {
        char number[400];
        std::snprintf(number, sizeof number, format, values[k]);
        text.append(number).append(" ");
    }
    return text;
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
        Place(adapter);
        AddWeb();
    }
    /// All numbers of a message's arrays, a blank behind each.
    static std::string ArraysOf(const std::string& message) {
        std::string text;
        for (std::string part : Lines(message, '[')) {
            if (std::string_view("-0123456789").find(part[0]) == std::string_view::npos) continue;
            part.erase(part.find(']'));
            std::erase(part, ',');
            text += part + " ";
        }
        return text;
    }
    /// The messages of what isn't asked for by a line.
    template <typename Operation>
    Texts SentBy(Operation&& operation) {
        m_host.texts.clear();
        operation();
        return m_host.texts;
    }
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
    const auto examples = ExamplesOf(Lines(Support::ReadText(TARN_DOCS "/protocol.md")));
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
        for (const double* values :
             {engine.m_Spectrum[c]->val, engine.m_Average[c]->val, engine.m_MaxHold[c][engine.m_ChannelIndex]->val})
            spectrum += Numbers("%f", values, 128);
        for (const double* values : {engine.m_ISweep[c]->val, engine.m_QSweep[c]->val})
            codes += Numbers("%f", values, 1024);
        for (const double* values :
             {engine.m_Histogram[c]->val, engine.m_HistogramI[c]->val, engine.m_HistogramQ[c]->val})
            histogram += Numbers("%f", values, 20);
        histogram += Numbers("%f", &engine.m_HistogramRange[c]->first, 1);
        histogram += Numbers("%f", &engine.m_HistogramRange[c]->second, 1);
        average += Numbers("%g", engine.m_Average[c]->val, 128);
    }
    // Long texts: a failure names the message alone.
    EXPECT_TRUE(ArraysOf(sent[3]) == spectrum);
    EXPECT_TRUE(ArraysOf(sent[4]) == codes);
    EXPECT_TRUE(ArraysOf(sent[5]) == histogram);
    const Texts averages = Send("-get_channel_average -update_channel_average");
    ASSERT_EQ(averages.size(), 1u);
    EXPECT_EQ(ArraysOf(averages[0]), average);
    EXPECT_EQ(m_answer.output, "");  // a message takes the text answer's place
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
            EXPECT_EQ(m_answer.output, plain.output) << line;
        }
}

TEST_F(WebTest, AnUpdateThatFailsIsTheAnswerOfAPlainLineAndTheErrorLineOfAnother) {
    StartWeb();
    for (const auto& [key, plain, message] : {std::tuple{"-update_channel_average", "channel average", "MaxHold"},
                                              {"-update_iq", "IQ", "IQ"},
                                              {"-update_histogram", "Histogram", "Histogram"},
                                              {"-update_spectrum", "spectrum", "spectrum"},
                                              {"-update_maxhold", "MaxHold", ""}}) {
        EXPECT_EQ(Send(key, true), Texts{}) << key;
        EXPECT_EQ(m_answer.output, std::string("Failed updating ") + plain);
        EXPECT_EQ(m_answer.exitCode, 0) << key;
        if (!*message) continue;
        const Texts sent = Send(key);  // the power of a spectrum goes out first
        EXPECT_EQ(sent.size(), plain == std::string("spectrum") ? 2u : 1u);
        EXPECT_EQ(sent.back(), std::string("error Failed updating ") + message);
    }
}

TEST_F(WebTest, OnlyTheStatusOfTheGainIsEscaped) {
    StartWeb();
    EXPECT_EQ(SentBy([&] { m_web->SetGainStatusResponse("a\"b\\c\nd\re\tf\x01"); }),
              Texts{Object("Gain Status", R"({"status": "a\"b\\c\nd\re\tf)"
                                          "\x01\"}")});
    EXPECT_EQ(SentBy([&] { m_web->GetPowerByChain("x\"\\y"); }),
              Texts{Object("Power Per Chain", R"({"chain": "x"\y","power": "0.000000"})")});
}

TEST_F(WebTest, NoiseFloorsAreTwoBeforeTheFirstCaptureAndOneForEachBandBehindIt) {
    StartWeb();
    EXPECT_EQ(Send("-noise_floor -91,0"), Texts{});
    EXPECT_EQ(m_answer.output, "");
    EXPECT_EQ(m_web->GetLmnSA()->m_BandNoiseFloor, (std::array{-91, 0, 0}));
    Send("-noise_floor -91,-92,-93");
    EXPECT_EQ(m_answer.output, "ERROR:incorrect number of noise floor values\n");
    Send("-trigger_now");
    Send("-noise_floor -91,-92,-93");
    EXPECT_EQ(m_answer.output, "");
    EXPECT_EQ(m_web->GetLmnSA()->m_BandNoiseFloor, (std::array{-91, -92, -93}));
}

TEST_F(WebTest, ThePowerTableHoldsTheLastPowersOfEachChannelVisited) {
    StartWeb("samples=1024,antennas=3");
    const auto table = [&] { return SentBy([&] { m_web->SendPowerTableData(); }); };
    EXPECT_EQ(table(), Texts{Object("Power Table Data", "[]")});
    Send("-trigger_now");
    Send("-get_power_per_chain A", true);
    const std::string a = m_answer.output;
    Send("-chain B -band 5.2 -channel 36 -trigger_now");
    Send("-get_power_per_chain B", true);
    const std::string b = m_answer.output;
    const std::string first =
        R"([{"key": "1,20,2.4","value": {"channel": "1","frequency": "2412","bandwidth": "20","band": "2.4",)";
    const std::string second =
        R"({"key": "36,20,5","value": {"channel": "36","frequency": "5180","bandwidth": "20","band": "5",)";
    EXPECT_EQ(table(), Texts{Object("Power Table Data",
                                    first + R"("powerChainA": ")" + a + R"(","powerChainB": "None"}},)" + second +
                                        R"("powerChainA": "None","powerChainB": ")" + b + R"("}}])")});
}

TEST_F(WebTest, AnAdapterWithOneAntennaHasOneChain) {
    StartWeb("samples=1024,antennas=1,card=64");
    EXPECT_EQ(Send("-get_supported_chains"),
              Texts{Object("Supported Chains Data", R"([{"value": "A", "label": "A"}])")});
}

}  // namespace

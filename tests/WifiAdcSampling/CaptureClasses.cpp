// What each capture class tells the radio, word by word, and what it hands to the engine.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "CSampleClover.h"
#include "LumenSA.h"
#include "QuayExceptions.h"

namespace {

using Calls = std::vector<std::string>;

/// Notes every capture call with its words and fills the vectors of `chains` chains with 1, 2, 3, ...
class FakeRadio : public quayCommand::IAdcCommands {
public:
    explicit FakeRadio(Calls& log) : calls(log) {}

    Calls& calls;
    std::uint32_t length = 16;
    std::uint64_t state = 0;
    unsigned chains = 1;
    unsigned whole = 0;
    bool fails = false;
    unsigned zeroVectors = 0;  ///< vectors that arrived zeroed at the last read, from the first on

    std::uint32_t GetCaptureLength() override { return length; }
    void GetCaptureState(quayCommand::CaptureState& out) override {
        out = {0xFFFF, 0xABCD00000000 | state, 0xFFFF};
        calls.emplace_back("state");
    }
    void SetCaptureDescriptorA(const quayCommand::CaptureDescriptorA& d) override { Note("A", d); }
    void SetCaptureDescriptorB(const quayCommand::CaptureDescriptorB& d) override { Note("B", d); }
    void SetCaptureDescriptorC(const quayCommand::CaptureDescriptorC& d) override { Note("C", d); }
    void SetCaptureDescriptorD(const quayCommand::CaptureDescriptorD& d) override { Note("D", d); }
    void SetCaptureSource(const quayCommand::CaptureSource& r) override { Note("source", r); }
    bool ReadCapture(const quayCommand::AdcReadRequest& request, double** i, double** q) override {
        Note("read", request);
        return Fill(i, q, 3);
    }
    bool ReadCaptureEx(const quayCommand::AdcReadRequest& request, double** i, double** q,
                       std::uint8_t* metadata) override {
        Note("readEx", request);
        std::fill_n(metadata, quayCommand::CaptureMetadataBytes, std::uint8_t{0xFF});
        return Fill(i, q, 4);
    }

    void ConfigTxRx(const quayCommand::RxConfig*) override {}
    void StartStopAllPeriodicCalibrations() override {}
    void SetCaptureMode(bool) override {}
    void PrepareCaptureA(const quayCommand::PrepareRecordA&) override {}
    void PrepareCaptureB(const quayCommand::PrepareRecordB&) override {}
    void SetManualGainA(const quayCommand::GainConfig&) override {}
    void SetManualGainB(const quayCommand::GainConfigB&) override {}
    void SetManualGainC(const quayCommand::GainConfigC&) override {}
    unsigned ChainsReadWhole() override { return whole; }
    std::uint32_t GetBoardSku() override { return 0; }
    void GetUcodeVersion(std::array<std::uint32_t, 2>&) override {}
    void GetDriverVersion(std::array<char, 256>&) override {}
    void GetUscVersion(std::array<std::uint32_t, 4>&) override {}
    void GetSVDriverVersion(std::array<std::uint32_t, 4>&) override {}

private:
    template <typename Record>
    void Note(const char* name, const Record& record) {
        std::string text = name;
        for (const std::uint32_t word : record)
            text += " " + std::to_string(word);
        calls.push_back(text);
    }
    /// Looks at all vectors there are, so that a sanitizer sees one that is too short, and fills those of the chains.
    bool Fill(double** i, double** q, unsigned vectors) {
        zeroVectors = 0;
        const auto isZero = [](double v) { return v == 0; };
        for (unsigned c = 0; c < vectors; ++c) {
            zeroVectors += std::all_of(i[c], i[c] + length, isZero) && std::all_of(q[c], q[c] + length, isZero);
            for (unsigned k = 0; c < chains && k < length; ++k) {
                i[c][k] = k + 1.0;
                q[c][k] = -1.0;
            }
        }
        if (fails) throw std::runtime_error("radio");
        return false;  // no success stops nothing
    }
};

class FakeEngine : public LumenSpectrumAnalyzer::CLmnSA {
public:
    explicit FakeEngine(Calls& log) : calls(log) {}
    Calls& calls;
    bool fails = false;

    void AddSweep(const double* const* i, const double* const* q, unsigned n, unsigned chains) override {
        if (fails) throw std::runtime_error("engine");
        double sum = 0;
        for (unsigned c = 0; c < 3; ++c)  // the engine reads three chains whatever their number
            for (unsigned k = 0; k < n; ++k)
                sum += i[c][k] + q[c][k];
        calls.push_back("sweep " + std::to_string(n) + " " + std::to_string(chains) + " " + std::to_string(int(sum)));
    }
    void UpdateFromLastSweep() override { calls.emplace_back("update"); }
    void SetProperty(LumenSpectrumAnalyzer::LmnSAProperty property, bool value) override {
        calls.push_back("property " + std::to_string(int(property)) + (value ? " on" : " off"));
    }
};

/// "message at file:line" of the radio layer's failure.
template <typename Operation>
std::string FailureOf(Operation&& operation) {
    try {
        operation();
    } catch (const CQuayMsgException& error) {
        return std::string(error.what()) + " at " + error.GetFile() + ":" + std::to_string(error.GetLine());
    }
    return "nothing thrown";
}

class CaptureClasses : public ::testing::Test {
protected:
    static std::int32_t Initiate(WifiAdc::CSampleCommon& sampler, std::uint64_t source, std::uint32_t chain) {
        quayCommand::AdcConfig adc;
        adc.chainMode = source;
        quayCommand::RxConfig rx;
        rx.m_currChain = chain;
        return sampler.Initiate(adc, rx);
    }

    Calls m_calls;
    FakeRadio m_radio{m_calls};
    FakeEngine m_engine{m_calls};
};

TEST_F(CaptureClasses, EachGenerationSendsItsOwnRecordsAndThenItsSweep) {
    const std::string formA = "A 1 3 0 0 65536 0 0 131072 10 2 0";
    const std::string formB = "B 1 3 0 1073741824 1073741824 0 2147483648 1073741824 10 2 0 0";
    const std::string formC = " 1 3 0 2147483648 2147483648 0 2147483648 2147483648 10 2 2 0 0 0 0 0 0 0";
    const std::string source = "source 3 1 0 2 0 1 0 0 0 0 0 0 0 0";
    const std::string oldRead = "read 0 5000 2 0", newRead = "readEx 0 5000 2 2";
    const std::string sweep = "sweep 16 2 240";  // two chains of 1 + ... + 16 and of 16 times -1
    m_radio.chains = 2;
    WifiAdc::CSampleSorrel sorrel(&m_radio, &m_engine);
    WifiAdc::CSampleTansy tansy(&m_radio, &m_engine);
    WifiAdc::CSampleYarrow yarrow(&m_radio, &m_engine);
    WifiAdc::CSampleClover clover(&m_radio, &m_engine);
    const struct {
        WifiAdc::CSampleCommon& sampler;
        std::uint64_t state;
        unsigned vectors;
        Calls expected;
    } cases[] = {
        {sorrel, 10, 3, {"state", formA, oldRead, sweep, "update"}},
        {sorrel, 1, 3, {"state", formB, oldRead, sweep, "update"}},
        {tansy, 0, 3, {formB, oldRead, sweep, "property 3 on", "update"}},
        {yarrow, 0, 4, {"C" + formC, newRead, sweep, "update"}},
        {clover, 0, 4, {source, "D" + formC, newRead, sweep, "update"}},
    };
    for (auto& test : cases) {
        EXPECT_EQ(Initiate(test.sampler, 3, 3), 2);
        EXPECT_EQ(test.sampler.GetNumOfSamples(), 16u);
        EXPECT_EQ(test.sampler.NumOfChainBuffers(), test.vectors);
        m_radio.state = test.state;
        for (int read = 0; read < 2; ++read) {  // the second one must not meet the first one's samples
            m_calls.clear();
            test.sampler.ReadSamples();
            EXPECT_EQ(m_calls, test.expected) << &test - cases;
            EXPECT_EQ(m_radio.zeroVectors, test.vectors);
        }
    }
}

TEST_F(CaptureClasses, AReadThatFailsInRadioOrEngineLeavesTheObjectReadyForTheNextOne) {
    class Sampler : public WifiAdc::CSampleYarrow {
    public:
        using CSampleYarrow::CSampleYarrow;
        bool IsIdle() const { return !m_pI && !m_pQ; }
    };
    Sampler sampler(&m_radio, &m_engine);
    Initiate(sampler, 2, 1);
    EXPECT_TRUE(sampler.IsIdle());
    for (bool* fault : {&m_radio.fails, &m_engine.fails}) {
        *fault = true;
        EXPECT_THROW(sampler.ReadSamples(), std::runtime_error);
        EXPECT_TRUE(sampler.IsIdle());
        *fault = false;
    }
    sampler.ReadSamples();
    EXPECT_EQ(m_calls.back(), "update");
    EXPECT_EQ(m_radio.zeroVectors, 4u);
    for (const auto& [chains, whole] : {std::pair{3u, 0u}, {1u, 0u}, {2u, 1u}, {1u, 1u}, {1u, 0u}}) {
        Initiate(sampler, chains + 1, 3);
        m_radio.chains = chains;
        m_radio.whole = whole;
        sampler.ReadSamples();
        EXPECT_EQ(m_radio.zeroVectors, 4u - whole) << "what more chains left behind is gone";
    }
}

TEST_F(CaptureClasses, AnIllegalSourceIsRefusedWithItsPlaceAndTheChainsBeforeStay) {
    WifiAdc::CSampleClover sampler(&m_radio, &m_engine);
    const std::int32_t chains[] = {1, 1, 1, 2, 3};
    for (unsigned source = 0; source < 5; ++source)
        EXPECT_EQ(Initiate(sampler, source, 3), chains[source]);
    EXPECT_EQ(FailureOf([&] { Initiate(sampler, 5, 1); }),
              "CSampleSorrel::NumChains received illegal source value. in WifiAdc::CSampleSorrel::NumChains at "
              "Tools/TRN/WifiAdcSampling/CsampleSorrel:50");
    sampler.ReadSamples();
    EXPECT_EQ(m_calls[m_calls.size() - 2].substr(0, 10), "sweep 16 3");
}

TEST_F(CaptureClasses, SamplesFromOutsideAreAlwaysOneChain) {
    WifiAdc::CSampleTansy sampler(&m_radio, &m_engine);
    Initiate(sampler, 3, 3);
    std::vector<double> samples(8, 2.0), none(8);
    double* vectors[] = {samples.data(), none.data(), none.data()};
    sampler.HandOverSamples(vectors, vectors, 8);
    EXPECT_EQ(m_calls, (Calls{"sweep 8 1 32", "update"}));
}

TEST_F(CaptureClasses, TheCommonClassReadsNothingAndScalesOnlySourceOne) {
    class Bare : public WifiAdc::CSampleCommon {
    public:
        using CSampleCommon::CSampleCommon;
        std::int32_t Initiate(quayCommand::AdcConfig, const quayCommand::RxConfig&) override { return 0; }
        std::int32_t NumChains(unsigned) override { return 0; }
        unsigned NumOfChainBuffers() override { return 3; }
    };
    Bare bare(&m_radio, nullptr);
    WifiAdc::CSampleSorrel sorrel(&m_radio, nullptr);
    EXPECT_EQ(bare.GetNumOfSamples(), 98304u);
    EXPECT_EQ(FailureOf([&] { bare.ReadSamples(); }),
              "Not Implemented in WifiAdc::CSampleCommon::ReadSamples at Tools/TRN/WifiAdcSampling/CSampleCommon:39");
    const double common[] = {3, 6, 3, 3}, first[] = {6, 12, 24, 6};
    for (unsigned source = 0; source < 4; ++source) {
        double a = 3, b = 3;
        bare.ScaleForSource(source, a);
        sorrel.ScaleForSource(source, b);
        EXPECT_TRUE(a == common[source] && b == first[source]) << source;
    }
}

}  // namespace

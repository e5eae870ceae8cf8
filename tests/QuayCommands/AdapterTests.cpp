#include "TestRadio.h"

#include "Exceptions.h"
#include "QuayExceptions.h"

using namespace radiotest;
using quayCommand::DescribeAdapter;

namespace {

TEST(Adapter, TheDefaultAdapterIsThereWritesOutEveryKeyAndHearsTheOffice) {
    UseRadio("", "");
    EXPECT_EQ(DescribeAdapter(),
              "hw=26,card=4,device=0x51F0,antennas=3,sku=1,mac=02:54:41:52:4E:01,bands=0+1+2,samples=98304,seed=1,"
              "connected=1");
    EXPECT_EQ(
        quayCommand::DescribeAir(),
        "simulated scene office: an office with access points in all three bands and the clock of a display link");
    auto* wifi = CommandFactory::GetInstance().getWifiInstance();
    EXPECT_TRUE(wifi->IsConnected());
    EXPECT_EQ(wifi->GetHwType(), 26u);
    EXPECT_EQ(wifi->GetCardType(), 4u);
    EXPECT_EQ(wifi->GetPlatformDeviceId(), 0x51F0u);
    EXPECT_EQ(wifi->GetDeviceInfo()->GetAntennaMask(), 3u);
    EXPECT_EQ(wifi->GetDeviceInfo()->GetSupportedBands(), (std::set<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(wifi->GetAdcObject()->GetCaptureLength(), 98304u);
}

TEST(Adapter, ADescriptionReadsBackAsItIsWritten) {
    const std::string text =
        "hw=23,card=8,device=0x7E40,antennas=1,sku=2,mac=AABBCCDDEEFF,bands=0+2,samples=8192,"
        "seed=18446744073709551615,connected=0";
    UseRadio(text, "sim:quiet");
    EXPECT_EQ(DescribeAdapter(), text);
    EXPECT_EQ(quayCommand::AdapterInUse(), quayCommand::ReadAdapter(text).Value());
    UseRadio("device=32320,connected=false", "sim:quiet");
    EXPECT_EQ(CommandFactory::GetInstance().getWifiInstance()->GetPlatformDeviceId(), 0x7E40u);
    EXPECT_FALSE(CommandFactory::GetInstance().getWifiInstance()->IsConnected());
    std::string mac;
    CommandFactory::GetInstance().getNvmInstance()->GetMacAddress(mac);
    EXPECT_EQ(mac, "02:54:41:52:4E:01");
}

TEST(Adapter, ABadDescriptionIsRefusedWithItsKeyAndTheAdapterBeforeStays) {
    UseRadio("seed=77", "sim:quiet");
    const auto before = DescribeAdapter();
    const std::string mac = " isn't a MAC address such as 02:54:41:52:4E:01";
    const std::string bands = " isn't a list of different bands such as 0+1+2";
    const std::string byte = " isn't a whole number from 0 to 255";
    const std::string unknown =
        ": unknown key; the keys are hw, card, device, antennas, sku, mac, bands, samples, seed, connected";
    const std::vector<std::tuple<std::string, std::vector<std::string>, std::string>> values{
        {"hw", {"abc", "", "26x", "-1"}, byte},
        {"card", {"256"}, byte},
        {"device", {"0x1FFFFFFFF"}, " isn't a whole number from 0 to 4294967295"},
        {"antennas", {"0"}, " isn't a whole number from 1 to 3"},
        {"sku", {"999"}, byte},
        {"mac", {"12:34", "02:54-41:52:4E:01"}, mac},
        {"bands", {"3", "0+0", "0+"}, bands},
        {"samples", {"0"}, " isn't a whole number from 1024 to 4194304"},
        {"seed", {"18446744073709551616"}, " isn't a whole number from 0 to 18446744073709551615"},
        {"connected", {"yes"}, " is none of 0, 1, true, false"}};
    std::vector<std::pair<std::string, std::string>> cases{{"hw", "hw: has no value"},
                                                           {"hw=26,hw=26", "hw: is given twice"},
                                                           {"hwtype=26", "hwtype" + unknown},
                                                           {"hw=26,", unknown}};
    for (const auto& [key, bad, why] : values)
        for (const auto& value : bad)
            cases.emplace_back(key + "=" + value, key + ": \"" + value + "\"" + why);
    for (const auto& [text, reason] : cases) {
        EXPECT_EQ(ReasonOf({text, "sim:quiet", "", ""}), "adapter: " + reason);
        EXPECT_EQ(DescribeAdapter(), before);
    }
}

TEST(Adapter, EveryKnownHardwareTypeCapturesOnEveryWidth) {
    for (const std::uint32_t hw :
         {5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30}) {
        UseRadio("samples=2048,hw=" + std::to_string(hw), "sim:quiet");
        for (const auto& [bandwidth, channel] : {std::pair{0u, 36u}, {1u, 38u}, {2u, 42u}, {3u, 50u}}) {
            const auto chains = Capture({1, bandwidth, channel, 3});
            ASSERT_EQ(chains.size(), 2u) << hw;
            EXPECT_NE(chains[0], chains[1]);
            EXPECT_NE(chains[1].back(), std::complex<double>());
        }
    }
}

TEST(Adapter, EachGainRecordLayoutReachesBothChains) {
    using namespace LumenSpectrumAnalyzer;
    struct Case {
        const char* adapter;
        ChipFamily family;
        std::uint32_t boardNumber;
    };
    for (const auto& c : {Case{"hw=23,sku=2", ChipFamily::Ash4, 1}, Case{"hw=11", ChipFamily::Plain, 2},
                          Case{"hw=25,sku=1", ChipFamily::Ash2, 0}, Case{"hw=29,sku=9", ChipFamily::Rowan, 2}}) {
        UseScene(Tone(2439.5, -60), std::string("samples=4096,") + c.adapter);
        const auto recording = quayCommand::RecordCapture({{0, 0, 6}, 3, {{{2, 1}, {3, 0}}}});
        ASSERT_FALSE(recording.IsRefused()) << recording.Reason();
        for (std::size_t chain = 0; chain < 2; ++chain) {
            const auto x = SamplesOf(recording->chains[chain]);
            const double gain = chain == 0 ? ManualGain(c.family, 1, 2, 0, "A", 6, c.boardNumber)
                                           : ManualGain(c.family, 0, 3, 0, "B", 6, c.boardNumber);
            EXPECT_DOUBLE_EQ(recording->facts.chains[chain].gainDb, gain);
            EXPECT_NEAR(Db(std::norm(ToneOf(x, 2.5 / recording->facts.sampleRateMhz, 0, x.size()))) - gain, -60.0, 0.5)
                << c.adapter << " chain " << chain;
        }
    }
}

TEST(Adapter, ChannelsAreThoseOfThePlanInEnabledBands) {
    UseRadio("bands=0+2", "sim:quiet");
    auto* nvm = CommandFactory::GetInstance().getNvmInstance();
    EXPECT_TRUE(nvm->IsBandEnabled(0) && !nvm->IsBandEnabled(1) && nvm->IsBandEnabled(2));
    EXPECT_TRUE(nvm->IsChannelSupported(14, 0, 0) && nvm->IsChannelSupported(31, 4, 2));
    EXPECT_FALSE(nvm->IsChannelSupported(36, 0, 1) || nvm->IsChannelSupported(15, 0, 0));
}

TEST(Adapter, CountriesAreKnownInEitherCaseAndOthersRefusedWhenApplied) {
    UseRadio("", "sim:quiet");
    auto* nvm = CommandFactory::GetInstance().getNvmInstance();
    EXPECT_NO_THROW(nvm->ApplyMcc()) << "the country it comes with";
    const auto apply = [&](const char* code) {
        nvm->SetMcc(static_cast<std::uint16_t>(code[0] << 8 | code[1]), true);
        nvm->ApplyMcc();
    };
    for (const char* known : {"US", "us", "Gb", "DE", "JP", "ZW", "AX", "CN", "IL"})
        EXPECT_NO_THROW(apply(known)) << known;
    for (const char* unknown : {"ZZ", "XX", "AA", "UK", "0A"})
        EXPECT_THROW(apply(unknown), CQuayMsgException) << unknown;
}

}  // namespace

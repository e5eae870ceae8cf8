#include <gtest/gtest.h>

#include <memory>

#include "BluetoothDefs.h"
#include "ValueFactory.h"
#include "WifiDefs.h"

namespace {

using namespace BackEnd;
using Core::IValue;
using Core::ValueFactory;

// What a static object sees that is built before main, in the order the linker likes.
const std::string shownBeforeMain = Common::Format("${1}") % Wifi::EBand{1};

/// How many members an enumeration has, and how many texts are read as one of them. Of BT.WorkMode two members claim
/// the same text.
struct Size {
    const char* typeName;
    std::size_t members;
    std::size_t texts;
};

// clang-format off
constexpr Size sizes[] = {
    {"Wifi.Band", 3, 6}, {"Wifi.BandWidth", 20, 40}, {"Wifi.BandWidthMode", 5, 5}, {"Wifi.ControlChannel", 16, 16},
    {"Wifi.Rate", 12 + 24 + 10 + 16 + 16, 2 * 12 + 24 + 10 + 16 + 16}, {"Wifi.Modulation", 6, 6},
    {"Wifi.TransmissionMode", 5, 5}, {"Wifi.Antenna", 7, 7}, {"Wifi.AntennaDiversity", 3, 6}, {"Wifi.WorkMode", 5, 10},
    {"Wifi.PowerMode", 2, 4}, {"Wifi.SendPacketsMode", 3, 6}, {"Wifi.FreqMode", 2, 2}, {"Wifi.Tx.PaCoreMode", 5, 5},
    {"Wifi.RegulatoryState", 2, 2}, {"Wifi.ResourceUnit", 10, 19}, {"Wifi.GuardInterval", 3, 6}, {"Wifi.LTF", 3, 6},
    {"Wifi.LpiMode", 3, 3}, {"Wifi.MCC", 26 * 26, 26 * 26}, {"BT.AntennaDiversity", 2, 2}, {"BT.BT5Mode", 4, 8},
    {"BT.PowerMode", 2, 2}, {"CsLePhy", 2, 2}, {"CsMode", 4, 4}, {"BT.Gap", 4, 8}, {"BT.Pattern", 8, 16},
    {"BT.PacketType", 12, 24}, {"BT.WorkMode", 11, 20}};
// clang-format on

TEST(Enumerations, AreWalkedBothWaysByNameWithoutAMemberOrTextMissing) {
    ValueFactory& factory = ValueFactory::Instance();
    std::size_t registered = 0;
    factory.Enumerate(
        [&](const std::string& name, auto*) {
            registered += factory.GetDescriptor(name)->GetMetaType() != nullptr;
            return true;
        },
        "");
    EXPECT_EQ(registered, std::size(sizes));
    for (const Size& size : sizes) {
        Core::ITypeDescriptor* type = factory.GetDescriptor(size.typeName);
        ASSERT_NE(type, nullptr) << size.typeName;
        const std::set<Core::Value> members = type->GetValues();
        const std::set<std::string> texts = type->GetMetaType()->GetNames();
        EXPECT_EQ(members.size(), size.members) << size.typeName;
        EXPECT_EQ(type->GetMetaType()->GetCount(), size.members) << size.typeName;
        EXPECT_EQ(texts.size(), size.texts) << size.typeName;
        const std::unique_ptr<IValue> read(factory.Create(size.typeName));
        ASSERT_NE(read, nullptr);
        std::set<std::string> shown;
        for (const Core::Value& member : members) {
            const std::string text = member.ToString();
            EXPECT_TRUE(read->FromString(text) && read->Equals(member.Get())) << size.typeName << " " << text;
            EXPECT_TRUE(shown.insert(text).second) << size.typeName << " " << text;
        }
        for (const std::string& text : texts) {
            EXPECT_FALSE(text.empty()) << size.typeName;
            EXPECT_TRUE(read->FromString(text) && shown.contains(read->ToString())) << size.typeName << " " << text;
        }
    }
}

/// The value that a text is read as; a number that no enumeration has for a text that none reads.
template <typename E>
std::int32_t Read(const std::string& text) {
    Core::TypedValue<E> value;
    return value.FromString(text) ? static_cast<std::int32_t>(value.GetRef()) : -999;
}

template <typename E>
std::string Shown(std::int32_t value) {
    return Common::Format("${1}") % static_cast<E>(value);
}

TEST(Enumerations, OfWidthsCarryTheirTextInTheirBits) {
    // "control/whole MHz", "whole MHz", "whole MHz (Dup)" against codes: 20 is 0, 40 is 1, ... and 10 is 16.
    const auto code = [](int mhz) { return mhz == 10 ? 16 : mhz / 40; };
    for (const auto& [value, text] : CoreTypes::MetaType<Wifi::EBandWidth>::Get().Displays()) {
        int first = 0, second = 0;
        const bool partial = std::sscanf(text.c_str(), "%d/%d", &first, &second) == 2;
        const bool duplicated = text.ends_with("(Dup)");
        const int whole = code(partial ? second : first);
        const int control = duplicated ? whole : code(first);
        EXPECT_EQ(value, whole | control << 5 | partial << 10 | duplicated << 11) << text;
        const std::string brief = text.substr(0, text.find(' ')) + (duplicated ? "dup" : "");
        EXPECT_EQ(Read<Wifi::EBandWidth>(brief), value);
        const auto width = static_cast<Wifi::EBandWidth>(value);
        EXPECT_EQ(static_cast<int>(GetBaseWidth(width)), whole * 33) << text;
        EXPECT_EQ(10 * IsWidth10(width) + 20 * IsWidth20(width) + 40 * IsWidth40(width) + 80 * IsWidth80(width) +
                      160 * IsWidth160(width) + 320 * IsWidth320(width),
                  partial ? second : first);
    }
}

TEST(Enumerations, WithARuleFollowIt) {
    for (char first = 'A'; first <= 'Z'; ++first)
        for (char second = 'A'; second <= 'Z'; ++second)
            EXPECT_EQ(Read<Wifi::EMCC>({first, second}), (first - 'A') * 26 + second - 'A');
    for (int mask = 1; mask <= 7; ++mask) {
        std::string chains;
        for (int bit = 0; bit < 3; ++bit)
            if (mask >> bit & 1) chains += static_cast<char>('A' + bit);
        EXPECT_EQ(Shown<Wifi::EAntenna>(mask), chains);
    }
    using Wifi::ERate;
    bool (*const haveStreams[])(ERate) = {Wifi::IsHtOneStreamRate, Wifi::IsHtTwoStreamRate, Wifi::IsHtThreeStreamRate};
    int legacy = 0, ht = 0, streams[3] = {};
    for (int value = -1; value <= 80; ++value) {
        const ERate rate{value};
        const std::string text = Shown<ERate>(value);
        EXPECT_EQ(IsLegacyRate(rate), text.ends_with(" Mbps")) << value;
        EXPECT_EQ(IsHtRate(rate), text.starts_with("HT")) << value;
        EXPECT_EQ(text.empty(), value < 0 || value == 46 || value > 78) << value;
        EXPECT_TRUE(!IsLegacyRate(rate) || Read<ERate>(text.substr(0, text.find(' '))) == value) << value;
        legacy += IsLegacyRate(rate);
        ht += IsHtRate(rate);
        for (int count = 0; count < 3; ++count)  // HT0 to HT7 have one stream, HT8 to HT15 two
            streams[count] += haveStreams[count](rate) && std::stoi(text.substr(2)) / 8 == count;
    }
    EXPECT_TRUE(legacy == 12 && ht == 24 && streams[0] == 8 && streams[1] == 8 && streams[2] == 8);
    const std::pair<int, const char*> rates[] = {
        {2, "5.5 Mbps"}, {4, "6 Mbps"}, {11, "54 Mbps"}, {12, "HT0"},  {35, "HT23"}, {36, "VHT0"}, {45, "VHT9"},
        {48, "HE0_DCM"}, {51, "HE2"},   {52, "HE3"},     {62, "HE11"}, {63, "EHT0"}, {78, "EHT15"}};
    for (const auto& [value, text] : rates)
        EXPECT_EQ(Shown<ERate>(value), text);
    EXPECT_TRUE(Read<ERate>("HE2_DCM") == -999 && Read<ERate>("") == -999);
}

TEST(Enumerations, ShowTheFirstTextAndReadAll) {
    EXPECT_EQ(shownBeforeMain, "5 GHz");
    EXPECT_EQ(Shown<Wifi::EBand>(3), "");
    for (const auto& [text, value] : {std::pair{"6-7", 2}, {"6-7 GHz", 2}, {"6-7 ghz", -999}})
        EXPECT_EQ(Read<Wifi::EBand>(text), value) << text;
    EXPECT_EQ(Shown<Wifi::EFreqMode>(1), " KHz");
    EXPECT_EQ(Read<Wifi::EPowerMode>("Automatic driver settings"), 2);
    EXPECT_EQ(Shown<Wifi::EPowerMode>(2), "Wifi.DriverControl");
    EXPECT_EQ(Read<Bluetooth::EBt5Mode>("lr2"), 4);
    EXPECT_EQ(Shown<Bluetooth::EBt5Mode>(4), "Long Range 2");
    EXPECT_EQ(Read<Bluetooth::EMode>("BT.Tx.Modulated.LowEnergy"), 9);
    EXPECT_EQ(Shown<Bluetooth::EMode>(14), "Bluetooth Low Energy Modulated Tx (With Hopping)");
    EXPECT_EQ(Read<Bluetooth::EMode>("Bluetooth Low Energy Modulated Tx (With Hopping)"), 14);
    const Core::Value band(Wifi::EBand{1});
    EXPECT_TRUE(band.Get()->Equals(Core::Value("5").Get()) && !band.Get()->Equals(Core::Value("2.4").Get()));
}

}  // namespace

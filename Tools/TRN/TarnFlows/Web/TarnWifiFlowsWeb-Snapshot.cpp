// Snapshots of a front-end: fourteen values of its own beside the settings, and settings that return through the
// setters, so that the radio is tuned as well.
#include <array>

#include "Stores/Snapshot.h"
#include "Streams/Trace.h"
#include "Support/DroppedFailure.h"
#include "Support/FlowText.h"
#include "Support/NumberText.h"
#include "Web/JsonText.h"
#include "Web/TarnWifiFlowsWeb.h"

using Streams::TraceError;

namespace {

/// The values of a front-end, which the flows keep without looking at them.
constexpr std::array<const char*, 14> FrontendFields{"is_scan",
                                                     "is_all_bands",
                                                     "is_fullband",
                                                     "refresh_interval",
                                                     "delay",
                                                     "is_multiple_test_iteration",
                                                     "multiple_test_iterations_val",
                                                     "is_powerdeembed",
                                                     "activeChannel_number",
                                                     "activeChannel_frequency",
                                                     "lastActiveChannel_number",
                                                     "lastActiveChannel_frequency",
                                                     "powerA",
                                                     "powerB"};

constexpr std::array<const char*, 3> BandArguments{"2.4", "5", "6-7"};

std::string StreamText(double value) {
    std::string text;
    AppendStreamText(text, value);
    return text;
}

}  // namespace

void TarnWifiFlowsWeb::SaveAll(std::string argument) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveAll");
    if (m_plainOutput) return TarnWifiFlows::SaveAll(argument);
    std::vector<std::string> values = FlowText::SplitString(argument, ",");
    if (values.size() != m_frontendFieldCount + 1) {
        TRACE(TraceError, "Unexpected number of parameters");
        return Send(traceFunctionName, "Save All Response", JsonText::Status("ERROR: unexpected number of parameters"));
    }
    const std::string path = values.front();
    values.erase(values.begin());
    PrepareSavedParamsNonArrays();
    PrepareSavedParams();
    LoadNonArraySavedParams(values);
    LoadDataFromLumen();
    LoadDataFromWifiFlows();
    SerializeData(path);
    DeleteSavedParams();
    Send(traceFunctionName, "Save All Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::PrepareSavedParamsNonArrays() {
    TRACE_SCOPE("TarnWifiFlowsWeb::PrepareSavedParamsNonArrays");
    TarnWifiFlows::PrepareSavedParamsNonArrays();
    if (m_plainOutput) return;
    for (const char* name : FrontendFields)
        m_savedNonArrays.push_back({name, 0.0});
}

void TarnWifiFlowsWeb::LoadNonArraySavedParams(std::vector<std::string> frontendValues) {
    TRACE_SCOPE("TarnWifiFlowsWeb::LoadNonArraySavedParams");
    TarnWifiFlows::LoadNonArraySavedParams();
    for (std::size_t k = 0; k < frontendValues.size(); ++k)
        m_savedNonArrays[Snapshot::PlaceCount + k].value = FlowText::TextToDouble(frontendValues[k]);
}

void TarnWifiFlowsWeb::LoadAll(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::LoadAll");
    if (m_plainOutput) return TarnWifiFlows::LoadAll(path);
    std::vector<std::string> frontendValues;
    const auto failure = DroppedFailure([&] {
        PrepareSavedParamsNonArrays();
        const Snapshot::Before before({Engine(), m_gainConfig});
        RestoreFrom(
            path, [&] { frontendValues = DeserializeNonArrayAndFrontendVariables(path); },
            [&] {  // what the setters set stays
                before.GiveBackSweep(Engine());
                SetSampleRate();
            });
    });
    if (failure) {
        const std::string text = "Failed to load settings: " + *failure;
        TRACE(TraceError, text);
        throw Common::Exception(text);
    }
    Send(traceFunctionName, "Load All Response", SavedParamsNonArraysToRespStr(frontendValues));
    SendPowerTableData();
}

std::vector<std::string> TarnWifiFlowsWeb::DeserializeNonArrayAndFrontendVariables(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::DeserializeNonArrayAndFrontendVariables");
    const auto texts = SavedTexts(path);
    for (std::size_t place = 0; place < Snapshot::PlaceCount && texts[place]; ++place)
        RestoreSetting(place, texts);
    std::vector<std::string> frontendValues;
    for (std::size_t place = Snapshot::PlaceCount; place < texts.size(); ++place)
        frontendValues.push_back(texts[place].value_or(""));
    return frontendValues;
}

void TarnWifiFlowsWeb::RestoreSetting(std::size_t place, const std::vector<std::optional<std::string>>& texts) {
    const std::string& text = *texts[place];
    const Snapshot::Setting& setting = Snapshot::Settings()[place];
    switch (place) {
        case Snapshot::Rbw:
            return SetRbw(FlowText::TextToDouble(text));
        case Snapshot::AverageSweepsValue:
            return SetChannelAverageSweepVal(FlowText::TextToInt(text));
        case Snapshot::Band: {
            const int band = FlowText::TextToInt(text);
            if (band >= 0 && band < static_cast<int>(BandArguments.size())) SetBand(BandArguments[band]);
            return;
        }
        case Snapshot::Bandwidth:
            return SetBandwidth(text);
        case Snapshot::CurrChain:
            return SetChain(ConvertChainU32ToString(static_cast<std::uint32_t>(FlowText::TextToInt(text))));
        case Snapshot::CurrChannelNumber:
            return SetChannel(FlowText::TextToInt(text));
        case Snapshot::CurrChannelIndex:
        case Snapshot::CurrChannelFrequency:  // both follow from the number
        case Snapshot::NoiseFloorLowBand:
        case Snapshot::NoiseFloorHighBand:
            return;
        case Snapshot::NoiseFloorUltraHighBand: {
            std::string floors;
            for (const std::uint32_t band : DeviceInfo().GetSupportedBands())
                if (band < BandArguments.size())
                    floors.append(floors.empty() ? "" : ",").append(*texts[Snapshot::NoiseFloorLowBand + band]);
            return SetNoiseFloor(floors);
        }
        case Snapshot::InternalLnaGain:
            return SetInternalGain(FlowText::TextToInt(text));
        case Snapshot::IsPreLnaResistor:
            return SetPreLnaResistor(FlowText::TextToInt(text) == 0 ? "false" : "true");
        default:
            setting.put({Engine(), m_gainConfig}, setting.parse(text));
    }
    // What comes back on is the flows' own from here on, so that messages carry it.
    using enum LumenSpectrumAnalyzer::LmnSAProperty;
    if (place == Snapshot::IsAverage && Engine().GetProperty(Average)) m_channelAverageOn = true;
    if (place == Snapshot::IsMaxHold && Engine().GetProperty(MaxHold)) m_maxHoldOn = true;
}

std::string TarnWifiFlowsWeb::SavedParamsNonArraysToRespStr(std::vector<std::string> frontendValues) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SavedParamsNonArraysToRespStr");
    struct Parameter {
        const char* name;
        Snapshot::Place place;
    };
    static constexpr auto Parameters = std::to_array<Parameter>({
        {"m_RBW", Snapshot::Rbw},
        {"m_AverageSweepsVal", Snapshot::AverageSweepsValue},
        {"m_ChannelAverageCounter", Snapshot::ChannelAverageCounter},
        {"Average", Snapshot::IsAverage},
        {"MaxHold", Snapshot::IsMaxHold},
        {"m_SweepLen", Snapshot::SweepLen},
        {"m_band", Snapshot::Band},
        {"m_Bandwidth", Snapshot::Bandwidth},
        {"m_currChain", Snapshot::CurrChain},
        {"m_currChannelNumber", Snapshot::CurrChannelNumber},
        {"m_currChannelFrequency", Snapshot::CurrChannelFrequency},
        {"m_noiseFloor_low", Snapshot::NoiseFloorLowBand},
        {"m_noiseFloor_high", Snapshot::NoiseFloorHighBand},
        {"m_noiseFloor_ultrahigh", Snapshot::NoiseFloorUltraHighBand},
        {"internalLnaGain", Snapshot::InternalLnaGain},
        {"isPreLnaResistorConnected", Snapshot::IsPreLnaResistor},
    });
    std::string body = "[ ";
    const auto append = [&body](const std::string& name, const std::string& value) {
        if (body.size() > 2) body += ',';
        body += JsonText::Object({{"parameter", name}, {"value", value}});
    };
    for (const Parameter& parameter : Parameters) {
        const double value = Snapshot::Settings()[parameter.place].get({Engine(), m_gainConfig});
        // Whole numbers of the stream keep all their digits.
        const bool real = parameter.place == Snapshot::Rbw || parameter.place == Snapshot::CurrChannelNumber ||
                          parameter.place == Snapshot::CurrChannelFrequency;
        append(parameter.name, real ? StreamText(value) : std::to_string(static_cast<std::int64_t>(value)));
    }
    for (std::size_t k = 0; k < frontendValues.size() && k < FrontendFields.size(); ++k)
        append(FrontendFields[k], frontendValues[k]);
    return body + " ]";
}

#include "Vesper/VesperReports.h"

#include <algorithm>

#include "ChannelPlan.h"
#include "Device/ChannelDatabase.h"
#include "OSAL/Files.h"
#include "OSAL/WholeFile.h"
#include "Streams/Trace.h"
#include "Support/NumberText.h"
#include "WifiDefs.h"

namespace VesperReports {

namespace {

void AppendFields(std::string& out, std::initializer_list<double> values) {
    for (const double value : values) {
        out += ", ";
        AppendFixedText(out, value);
    }
}

std::string BandName(std::uint32_t band) {
    if (band >= RadioFacts::BandCount) return std::to_string(band);
    return CoreTypes::MetaType<BackEnd::Wifi::EBand>::Get().Display(static_cast<std::int32_t>(band));
}

void AppendSpurs(std::string& out, const VesperKey& key, const std::vector<VesperStore::SpurRecord>& spurs) {
    out += ", 1";
    const double centre = RadioFacts::CentreMhz(key.band, key.channel);
    for (const auto& spur : spurs) {
        AppendFields(out, {spur.frequency, spur.power, spur.frequency - centre});
        out += ", " + spur.chain;
    }
}

/// The bins of a slot, or none.
std::span<const double> BinsOf(const std::map<VesperKey, std::vector<VesperStore::Bins>>& store, const VesperKey& key,
                               std::size_t slot) {
    const auto slots = store.find(key);
    if (slots == store.end() || slot >= slots->second.size()) return {};
    return slots->second[slot];
}

}  // namespace

std::string Summary(VesperStore& store, const VesperSettings& settings) {
    std::string csv =
        "Channel,WiFI De-sense [dB], Band, Spur Detected, Channel Freq, Spur Value, BB Freq[Center], Chain\n";
    for (std::uint32_t band = 0; band < RadioFacts::BandCount; ++band)
        for (const auto& [key, results] : store.m_vesperResults) {
            if (key.band != band) continue;
            csv += std::to_string(key.channel) + ", ";
            AppendStreamText(csv, store.DesenseValue(settings, key));
            csv += ", " + BandName(band);
            if (const auto spurs = store.m_vesperSpurs.find(key); spurs != store.m_vesperSpurs.end())
                AppendSpurs(csv, key, spurs->second);
            csv += '\n';
        }
    return csv;
}

std::string AllBins(const VesperStore& store, const VesperSettings& settings, VesperStore::Engine& engine,
                    const BinsContext& context) {
    int start = 0, end = 0;
    engine.CalculateFreqIndices(engine.m_Bandwidth, engine.m_SampleRate, engine.m_NumOfBins, &start, &end);
    std::string csv = Common::Format(
                          "Channel,Band,Chain,Frequency,Average [dBm/${1}KHz RBW],Peak [dBm/${1}KHz RBW],RBW,BW,"
                          "Trigger Time\n") %
                      static_cast<std::int32_t>(engine.m_RBW);
    std::string tail = ", ";
    AppendStreamText(tail, engine.m_RBW);
    tail += ", " + std::to_string(engine.m_Bandwidth) + ", " + context.time + "\n";
    for (const auto& [key, unused] : store.m_vesperAverage)
        for (std::size_t slot = 0; slot < VesperStore::SlotsOf(settings, engine); ++slot) {
            const bool oneChain = settings.m_vesperChainMode == VesperOneChain;
            const std::string chain = oneChain ? context.chain : slot == 0 ? "A" : "B";
            const std::string band =
                key.band < RadioFacts::BandCount ? std::string(RadioFacts::Bands[key.band].code) : std::string();
            const std::string head = std::to_string(key.channel) + ", " + band + ", " + chain + ", ";
            const int halfWidthMhz = engine.m_Bandwidth / 2;
            double frequency =
                ChannelDatabase::GetChannelInfoByChannel(key.channel, context.bandwidth, key.band) - halfWidthMhz;
            const auto average = BinsOf(store.m_vesperAverage, key, slot);
            const auto maxHold = BinsOf(store.m_vesperMaxHold, key, slot);
            const std::size_t stop =
                std::min({static_cast<std::size_t>(std::max(end, 0)), average.size(), maxHold.size()});
            for (auto k = static_cast<std::size_t>(std::max(start, 0)); k < stop; ++k) {
                csv += head;
                AppendStreamText(csv, frequency);
                csv += ", ";
                AppendStreamText(csv, average[k]);
                csv += ", ";
                AppendStreamText(csv, maxHold[k]);
                csv += tail;
                frequency += engine.m_RBW / 1000.0;
            }
        }
    return csv;
}

std::string Graph(const VesperStore& store, const VesperSettings& settings, VesperStore::Engine& engine,
                  const VesperKey& key) {
    const auto frequency = static_cast<std::int32_t>(RadioFacts::CentreMhz(key.band, key.channel));
    std::string json = "[";
    for (std::size_t slot = 0; slot < VesperStore::SlotsOf(settings, engine); ++slot) {
        if (slot > 0) json += ',';
        json += Common::Format(R"({"frequency": "${1}", "numOfBins": "${2}", "averageData": [)") % frequency %
                engine.m_NumOfBins;
        AppendFixedList(json, BinsOf(store.m_vesperAverage, key, slot), ", ");
        json += R"(], "maxData": [)";
        AppendFixedList(json, BinsOf(store.m_vesperMaxHold, key, slot), ", ");
        json += "]}";
    }
    return json + ']';
}

void Write(const char* operation, const std::string& path, const std::string& text) {
    if (OSAL::IsLink(path)) Streams::ThrowLogged(operation, Common::Format("File ${1} is a link") % path);
    if (const auto written = OSAL::WriteWholeFile(path, text); !written)
        Streams::ThrowLogged(operation, written.Reason());
}

}  // namespace VesperReports

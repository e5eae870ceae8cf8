#include "ChannelTable.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace TarnServe {
namespace {

using Json = nlohmann::json;

/// The band's number text "5" and the key's "5.2" mean the same.
std::string_view BandText(std::string_view band) {
    return band == "5" ? "5.2" : band;
}

Json NumberOrNull(const std::optional<double>& value) {
    return value ? Json(*value) : Json(nullptr);
}

std::optional<double> OptionalNumber(const Json& object, const char* key) {
    const auto entry = object.find(key);
    if (entry == object.end() || !entry->is_number()) return std::nullopt;
    return entry->get<double>();
}

/// The worst of two verdicts, so that one word stands for both chains.
std::string Worse(const std::string& a, const std::string& b) {
    static constexpr std::string_view order[] = {"", "PASS", "MARGIN", "FAIL", "INVALID"};
    return std::ranges::find(order, a) < std::ranges::find(order, b) ? b : a;
}

}  // namespace

void ChannelTable::Take(const Tuning& tuning, const std::vector<ChainVerdict>& verdicts, const std::string& utc) {
    if (tuning.channel == 0) return;
    Row row;
    row.name = {std::string(BandText(tuning.band)), tuning.bandwidth, tuning.channel};
    row.centre_mhz = tuning.centre_mhz;
    row.utc = utc;
    for (const ChainVerdict& verdict : verdicts) {
        (verdict.chain == "B" ? row.powerB : row.powerA) = verdict.power_dbm;
        row.limit_dbm = verdict.limit_dbm;
        row.verdict = Worse(row.verdict, verdict.verdict);
    }
    m_rows[{row.name.band, std::atoi(row.name.bandwidth.c_str()), row.name.channel}] = std::move(row);
}

Json ChannelTable::ToJson() const {
    Json rows = Json::array();
    for (const auto& [key, row] : m_rows)
        rows.push_back({{"band", row.name.band},
                        {"bandwidth", row.name.bandwidth},
                        {"channel", row.name.channel},
                        {"centre_mhz", row.centre_mhz},
                        {"powerA", NumberOrNull(row.powerA)},
                        {"powerB", NumberOrNull(row.powerB)},
                        {"limit_dbm", NumberOrNull(row.limit_dbm)},
                        {"verdict", row.verdict},
                        {"utc", row.utc}});
    return rows;
}

void ChannelTable::FromJson(const Json& rows) {
    m_rows.clear();
    if (!rows.is_array()) return;
    for (const Json& entry : rows) {
        if (!entry.is_object()) continue;
        try {
            Row row;
            row.name = {entry.at("band"), entry.at("bandwidth"), entry.at("channel")};
            row.centre_mhz = entry.at("centre_mhz");
            row.powerA = OptionalNumber(entry, "powerA");
            row.powerB = OptionalNumber(entry, "powerB");
            row.limit_dbm = OptionalNumber(entry, "limit_dbm");
            row.verdict = entry.at("verdict");
            row.utc = entry.at("utc");
            m_rows[{row.name.band, std::atoi(row.name.bandwidth.c_str()), row.name.channel}] = std::move(row);
        } catch (const Json::exception&) {
            continue;
        }
    }
}

std::vector<ChannelName> ChannelsOf(std::string_view supported, const Tuning& tuning, bool allBands) {
    std::vector<ChannelName> channels;
    const Json bands = Json::parse(supported, nullptr, false);
    if (!bands.is_array()) return channels;
    for (const Json& band : bands) {
        const std::string name(BandText(band.value("band", "")));
        if (!allBands && name != BandText(tuning.band)) continue;
        for (const Json& width : band.value("bandwidths", Json::array())) {
            if (width.value("bandwidth", "") != tuning.bandwidth) continue;
            for (const Json& channel : width.value("channels", Json::array())) {
                const int number = std::atoi(channel.value("value", "").c_str());
                if (number > 0) channels.push_back({name, tuning.bandwidth, number});
            }
        }
    }
    return channels;
}

}  // namespace TarnServe

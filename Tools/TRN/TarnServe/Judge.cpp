#include "Judge.h"

#include <charconv>

#include "Measurement.h"

namespace TarnServe {
namespace {

/// The bins whose centre lies in the channel.
TarnMeasure::Reading ReadingOf(const Tuning& tuning, const std::vector<double>& graph) {
    TarnMeasure::Reading reading;
    reading.band = tuning.band;
    reading.channel = tuning.channel;
    reading.bandwidth_mhz = TarnMeasure::WidthMhz(tuning.bandwidth);
    reading.step_mhz = tuning.rbw_khz / 1000;
    const std::size_t centreBin = graph.size() / 2;
    const double first_mhz = tuning.centre_mhz - static_cast<double>(centreBin) * reading.step_mhz;
    for (std::size_t bin = 0; bin < graph.size(); ++bin) {
        const double mhz = first_mhz + static_cast<double>(bin) * reading.step_mhz;
        if (mhz < tuning.centre_mhz - reading.bandwidth_mhz / 2 || mhz > tuning.centre_mhz + reading.bandwidth_mhz / 2)
            continue;
        if (reading.graph.empty()) reading.first_mhz = mhz;
        reading.graph.push_back(graph[bin]);
    }
    return reading;
}

}  // namespace

OSAL::Outcome<std::optional<TarnMeasure::Limits>> ReadLimits(const std::string& text, const DataFolder& folder) {
    if (text.empty()) return std::optional<TarnMeasure::Limits>();
    double level = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), level);
    const bool isLevel = error == std::errc() && end == text.data() + text.size();
    const auto file = isLevel ? OSAL::Outcome<std::string>(std::string()) : folder.Read(text);
    if (!file) return OSAL::Refusal{"'" + text.substr(0, 80) + "' is no level in dBm, and " + file.Reason()};
    auto read = isLevel ? TarnMeasure::Limits::OfLevel(level) : TarnMeasure::Limits::Parse(*file);
    if (!read) return OSAL::Refusal{text + ": " + read.Reason()};
    return std::optional(std::move(*read));
}

OSAL::Outcome<> Judge::Use(const std::string& text, double margin_db, const DataFolder& folder) {
    auto limits = ReadLimits(text, folder);
    if (!limits) return limits.Why();
    m_limits = std::move(*limits);
    m_text = text;
    m_margin_db = margin_db;
    return {};
}

std::vector<TarnMeasure::Limits::Point> Judge::Line() const {
    return m_limits ? m_limits->Line() : std::vector<TarnMeasure::Limits::Point>();
}

ChainVerdict Judge::Say(const Tuning& tuning, const std::string& chain, std::optional<double> power_dbm,
                        const std::vector<double>& graph, const std::string& invalid) const {
    ChainVerdict verdict{chain, power_dbm, std::nullopt, std::nullopt, "", ""};
    if (!m_limits) return verdict;
    TarnMeasure::Reading reading = ReadingOf(tuning, graph);
    reading.power_dbm = power_dbm.value_or(0);
    reading.invalid = !invalid.empty() ? invalid : !power_dbm ? "no power" : "";
    const auto judgement = m_limits->Judge(reading, m_margin_db);
    if (!judgement) return verdict;
    verdict.limit_dbm = m_limits->ChannelDbm(tuning.band, tuning.channel, reading.bandwidth_mhz);
    verdict.verdict = TarnMeasure::VerdictText(judgement->verdict);
    verdict.reason = judgement->invalid;
    if (judgement->verdict == TarnMeasure::Verdict::Invalid) return verdict;
    verdict.limit_dbm = judgement->limit_dbm;
    verdict.margin_db = -judgement->Excess();
    return verdict;
}

}  // namespace TarnServe

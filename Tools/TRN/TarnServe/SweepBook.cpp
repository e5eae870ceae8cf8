#include "SweepBook.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"
#include "Measurement.h"

namespace TarnServe {
namespace {

/// Part that a new interval has in the rate: ten sweeps settle it.
constexpr double rateWeight = 0.1;

const std::string& ValueOf(const Settings& settings, const char* key) {
    static const std::string none;
    const auto entry = settings.find(key);
    return entry == settings.end() ? none : entry->second;
}

template <typename Number>
Number NumberOf(const std::string& text, Number otherwise) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : otherwise;
}

Tuning TuningOf(const Settings& settings) {
    Tuning tuning;
    tuning.band = ValueOf(settings, "-band");
    tuning.bandwidth = ValueOf(settings, "-bandwidth");
    tuning.channel = NumberOf(ValueOf(settings, "-channel"), 0);
    tuning.chain = ValueOf(settings, "-chain");
    tuning.rbw_khz = NumberOf(ValueOf(settings, "-rbw"), 0.0);
    if (tuning.channel != 0) tuning.centre_mhz = TarnMeasure::CentreMhz(tuning.band, tuning.channel);
    return tuning;
}

bool IsOtherSpectrum(const Tuning& a, const Tuning& b) {
    return a.band != b.band || a.bandwidth != b.bandwidth || a.channel != b.channel || a.rbw_khz != b.rbw_khz;
}

bool HasKey(const std::string& line, std::string_view name) {
    const CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    return std::ranges::any_of(tokens, [&](const std::string& token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(token);
        return key && key->name == name;
    });
}

}  // namespace

void SweepBook::TakeLine(const std::string& line, const Settings& settings, const std::string& utc) {
    const Tuning tuning = TuningOf(settings);
    const bool maxHold = ValueOf(settings, "-maxhold") == "true";
    const bool average = ValueOf(settings, "-channel_average") == "true";
    const bool isOther = IsOtherSpectrum(m_tuning, tuning);
    if (maxHold && (isOther || !m_maxHold || HasKey(line, "-maxhold"))) m_holdSince = utc;
    if (isOther || (average && !m_average) || m_tuning.chain != tuning.chain || HasKey(line, "-clear_average"))
        m_count = 0;
    m_tuning = tuning;
    m_maxHold = maxHold;
    m_average = average;
    m_target = std::clamp(NumberOf(ValueOf(settings, "-channel_average_sweep_val"), 25), 1, 100);
    m_count = std::min(m_count, m_target);
}

void SweepBook::TakeSweep(Clock::time_point now) {
    ++m_sweeps;
    if (m_average) m_count = std::min(m_count + 1, m_target);
    const double seconds = std::chrono::duration<double>(now - m_last).count();
    const bool isFirst = m_last == Clock::time_point{} || seconds > 2;
    if (!isFirst && seconds > 0) m_rate = m_rate == 0 ? 1 / seconds : m_rate + rateWeight * (1 / seconds - m_rate);
    if (isFirst) m_rate = 0;
    m_last = now;
}

std::string SweepBook::TriggerLine() const {
    if (!m_average) return "-trigger_now";
    // the engine's weight of the new sweep is 1 / (counter + 1); at the target the average goes on running
    const std::string counter = std::to_string(std::min(m_count, m_target - 1));
    return "-channel_average_counter " + counter + "," + counter + "," + counter + " -trigger_now";
}

std::string SweepBook::LineOf(const Settings& settings) {
    CmdLine::TokenList tokens;
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys()) {
        const auto entry = settings.find(std::string(key.name));
        if (entry == settings.end()) continue;
        tokens.push_back(entry->first);
        tokens.push_back(entry->second);
    }
    return CmdLine::JoinTokens(tokens);
}

}  // namespace TarnServe

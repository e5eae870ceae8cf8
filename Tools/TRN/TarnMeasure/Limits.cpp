#include "Limits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "ChannelPlan.h"
#include "OSAL/OSAL.h"
#include "PlainText.h"

namespace TarnMeasure {
namespace {

constexpr std::size_t longestFile = 1 << 20;
constexpr double lowestLevel_dbm = -250, highestLevel_dbm = 100;

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string_view> Fields(std::string_view line) {
    std::vector<std::string_view> fields;
    while (true) {
        const auto comma = line.find(',');
        fields.push_back(Trimmed(line.substr(0, comma)));
        if (comma == std::string_view::npos) return fields;
        line.remove_prefix(comma + 1);
    }
}

/// The whole of `text` as a finite number.
std::optional<double> Number(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<double> Level(std::string_view text) {
    const auto level = Number(text);
    return level && *level >= lowestLevel_dbm && *level <= highestLevel_dbm ? level : std::nullopt;
}

/// The one spelling of a band; empty for what is none.
std::string BandOf(std::string_view text) {
    const auto band = RadioFacts::FindBand(text);
    return band ? std::string(RadioFacts::Bands[*band].name) : std::string();
}

Verdict VerdictOf(double excess_db, double margin_db) {
    if (!(excess_db <= 0)) return Verdict::Fail;  // what is no number passes nothing
    return excess_db <= -margin_db ? Verdict::Pass : Verdict::Margin;
}

}  // namespace

/// Reads the lines of a CSV, one after the other.
class LimitsReader {
public:
    OSAL::Outcome<Limits> Read(std::string_view csv);

private:
    std::optional<std::string> TakeHeader(const std::vector<std::string_view>& fields);
    std::optional<std::string> TakeRow(const std::vector<std::string_view>& fields);
    std::optional<std::string> TakePoint(std::string_view frequency, double level_dbm);
    std::optional<std::string> TakeLevel(const std::vector<std::string_view>& fields, double level_dbm);
    /// The row's field of a column; empty when there is no such column.
    std::string_view Field(const std::vector<std::string_view>& fields, std::string_view column) const;
    bool Has(std::string_view column) const { return std::ranges::find(m_columns, column) != m_columns.end(); }

    std::vector<std::string> m_columns;
    Limits m_limits;
};

std::string_view LimitsReader::Field(const std::vector<std::string_view>& fields, std::string_view column) const {
    const auto found = std::ranges::find(m_columns, column);
    return found == m_columns.end() ? std::string_view() : fields[static_cast<std::size_t>(found - m_columns.begin())];
}

std::optional<std::string> LimitsReader::TakeHeader(const std::vector<std::string_view>& fields) {
    static constexpr std::string_view known[] = {"band", "channel", "bandwidth_mhz", "frequency_mhz", "limit_dbm"};
    for (const std::string_view field : fields) {
        if (std::ranges::find(known, field) == std::end(known))
            return "'" + std::string(field) +
                   "' is no column; there are band, channel, bandwidth_mhz, frequency_mhz "
                   "and limit_dbm";
        if (Has(field)) return "column '" + std::string(field) + "' stands twice";
        m_columns.emplace_back(field);
    }
    if (!Has("limit_dbm")) return "there is no column limit_dbm";
    if (Has("frequency_mhz") ? m_columns.size() > 2 : !Has("band"))
        return "limit_dbm needs band beside it (and channel, bandwidth_mhz), or frequency_mhz alone";
    return std::nullopt;
}

std::optional<std::string> LimitsReader::TakePoint(std::string_view frequency, double level_dbm) {
    const auto mhz = Number(frequency);
    if (!mhz || *mhz <= 0) return "'" + std::string(frequency) + "' is no frequency in MHz";
    if (!m_limits.m_points.empty() && *mhz <= m_limits.m_points.back().frequency_mhz)
        return "the frequencies must rise from line to line";
    m_limits.m_points.push_back({*mhz, level_dbm});
    return std::nullopt;
}

std::optional<std::string> LimitsReader::TakeLevel(const std::vector<std::string_view>& fields, double level_dbm) {
    const std::string_view bandText = Field(fields, "band");
    const std::string band = BandOf(bandText);
    if (band.empty()) return "'" + std::string(bandText) + "' is no band; there are " + Listed(RadioFacts::BandChoices);
    std::array<double, 2> numbers{};  // channel and width, 0 for any
    static constexpr std::string_view columns[] = {"channel", "bandwidth_mhz"};
    for (std::size_t k = 0; k < numbers.size(); ++k) {
        const std::string_view text = Field(fields, columns[k]);
        if (text.empty()) continue;
        const auto number = Number(text);
        if (!number || *number < 1 || *number > 1000 || *number != std::floor(*number))
            return "'" + std::string(text) + "' is no " + (k == 0 ? "channel number" : "channel width in MHz");
        numbers[k] = *number;
    }
    const bool isNew = m_limits.m_levels.insert({{band, static_cast<int>(numbers[0]), numbers[1]}, level_dbm}).second;
    return isNew ? std::nullopt : std::optional<std::string>("a limit for the same place stands before");
}

std::optional<std::string> LimitsReader::TakeRow(const std::vector<std::string_view>& fields) {
    if (fields.size() != m_columns.size())
        return std::to_string(fields.size()) + " fields under " + std::to_string(m_columns.size()) + " columns";
    const std::string_view text = Field(fields, "limit_dbm");
    const auto level = Level(text);
    if (!level) return "'" + std::string(text) + "' is no level in dBm";
    return Has("frequency_mhz") ? TakePoint(Field(fields, "frequency_mhz"), *level) : TakeLevel(fields, *level);
}

OSAL::Outcome<Limits> LimitsReader::Read(std::string_view csv) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (csv.starts_with(byteOrderMark)) csv.remove_prefix(byteOrderMark.size());
    for (std::size_t number = 1; !csv.empty(); ++number) {
        const auto end = std::min(csv.find('\n'), csv.size());
        const std::string_view line = Trimmed(csv.substr(0, end));
        csv.remove_prefix(std::min(end + 1, csv.size()));
        if (line.empty() || line.starts_with('#')) continue;
        const auto trouble = m_columns.empty() ? TakeHeader(Fields(line)) : TakeRow(Fields(line));
        if (trouble) return OSAL::Refusal{"line " + std::to_string(number) + ": " + *trouble};
    }
    if (m_limits.m_levels.empty() && m_limits.m_points.empty()) return OSAL::Refusal{"line 1: there is no limit"};
    if (m_limits.m_points.size() == 1) return OSAL::Refusal{"line 2: a line needs two points"};
    return m_limits;
}

const char* VerdictText(Verdict verdict) {
    switch (verdict) {
        case Verdict::Pass:
            return "PASS";
        case Verdict::Margin:
            return "MARGIN";
        case Verdict::Fail:
            return "FAIL";
        case Verdict::Invalid:
            break;
    }
    return "INVALID";
}

Verdict Graver(Verdict a, Verdict b) {
    return std::max(a, b);
}

OSAL::Outcome<Limits> Limits::OfLevel(double level_dbm) {
    if (!(level_dbm >= lowestLevel_dbm && level_dbm <= highestLevel_dbm))
        return OSAL::Refusal{"a limit is a level in dBm from -250 to 100"};
    Limits limits;
    limits.m_levels[{}] = level_dbm;
    return limits;
}

OSAL::Outcome<Limits> Limits::Parse(std::string_view csv) {
    return LimitsReader().Read(csv);
}

OSAL::Outcome<Limits> Limits::Read(const std::string& text) {
    if (const auto level = Number(Trimmed(text))) return OfLevel(*level);
    const std::string name = "limit file '" + text + "'";
    const OSAL::FileHandle file = OSAL::OpenFile(text, OSAL::ReadOnly, true);
    if (file == OSAL::InvalidFile)
        return OSAL::Refusal{"'" + text + "' is neither a level in dBm nor a file of limits that can be read"};
    std::string csv(longestFile + 1, '\0');
    std::size_t got = 0;
    const bool isRead = OSAL::ReadFile(file, 0, csv.data(), csv.size(), got) == OSAL::Success;
    OSAL::CloseFile(file);
    if (!isRead) return OSAL::Refusal{"can't read the " + name};
    csv.resize(got);
    if (csv.size() > longestFile) return OSAL::Refusal{name + " is longer than 1 MiB"};
    auto limits = Parse(csv);
    if (!limits) return OSAL::Refusal{name + ", " + limits.Reason()};
    return limits;
}

std::optional<double> Limits::ChannelDbm(const std::string& band, int channel, double bandwidth_mhz) const {
    const std::string name = BandOf(band);
    const Key keys[] = {{name, channel, bandwidth_mhz}, {name, channel, 0}, {name, 0, bandwidth_mhz}, {name, 0, 0}, {}};
    for (const Key& key : keys)
        if (const auto row = m_levels.find(key); row != m_levels.end()) return row->second;
    return std::nullopt;
}

std::optional<double> Limits::LineDbm(double frequency_mhz) const {
    const auto above = std::ranges::lower_bound(m_points, frequency_mhz, {}, &Point::frequency_mhz);
    if (above == m_points.end()) return std::nullopt;
    if (above->frequency_mhz == frequency_mhz) return above->level_dbm;
    if (above == m_points.begin()) return std::nullopt;
    const Point& below = *std::prev(above);
    const double share = (frequency_mhz - below.frequency_mhz) / (above->frequency_mhz - below.frequency_mhz);
    return std::lerp(below.level_dbm, above->level_dbm, share);
}

std::optional<Judgement> Limits::Judge(const Reading& reading, double margin_db) const {
    std::optional<Judgement> worst;
    const auto take = [&](double level_dbm, double limit_dbm, std::optional<double> mhz) {
        // an empty bin (minus infinity) stays below every limit; what is no number doesn't
        if (!worst || !(level_dbm - limit_dbm <= worst->Excess())) worst = {{}, level_dbm, limit_dbm, mhz, {}};
    };
    if (!IsLine()) {
        if (const auto limit = ChannelDbm(reading.band, reading.channel, reading.bandwidth_mhz))
            take(reading.power_dbm, *limit, std::nullopt);
    }
    for (std::size_t k = 0; k < reading.graph.size() && IsLine(); ++k) {
        const double mhz = reading.first_mhz + static_cast<double>(k) * reading.step_mhz;
        if (const auto limit = LineDbm(mhz)) take(reading.graph[k], *limit, mhz);
    }
    if (!worst) return std::nullopt;
    worst->verdict = VerdictOf(worst->Excess(), margin_db);
    worst->invalid = reading.invalid;
    if (std::isnan(worst->level_dbm) && worst->invalid.empty()) worst->invalid = "the level is no number";
    if (!worst->invalid.empty()) worst->verdict = Verdict::Invalid;
    return worst;
}

}  // namespace TarnMeasure

#include "Stores/FreqPowerStore.h"

#include <algorithm>
#include <utility>

#include "Device/ChannelDatabase.h"
#include "Exceptions.h"
#include "OSAL/WholeFile.h"
#include "Streams/Trace.h"
#include "Support/NumberText.h"

namespace {

constexpr const char* NotMeasured = "None";

std::string StreamText(double value) {
    std::string text;
    AppendStreamText(text, value);
    return text;
}

/// Element i of a list; empty beyond its end, as in the times of an entry that came from a snapshot.
const std::string& At(const std::vector<std::string>& list, std::size_t i) {
    static const std::string empty;
    return i < list.size() ? list[i] : empty;
}

void AppendEntry(std::string& csv, const FreqPowerKey& key, const FreqPowerEntry& entry) {
    const double frequency =
        ChannelDatabase::GetChannelInfoByChannel(key.channel, key.bandwidth, static_cast<std::uint32_t>(key.band));
    csv += ChannelDatabase::BandwidthEnumToValue(key.bandwidth) + "MHz, " + std::to_string(key.channel) + " (" +
           std::to_string(static_cast<std::int32_t>(frequency)) + " MHz), " + entry.rbw;
    for (std::size_t i = 0; i < entry.chainA.size(); ++i)
        csv.append(", ")
            .append(entry.chainA[i])
            .append(", ")
            .append(At(entry.chainB, i))
            .append(", ")
            .append(At(entry.times, i));
    csv += '\n';
}

}  // namespace

bool FreqPowerStore::IsTriggerDue(bool averageOn, bool maxHoldOn, std::int64_t averageCounter,
                                  std::int64_t averageSweeps) {
    if (!averageOn || maxHoldOn) return true;
    return averageSweeps >= 1 && (averageCounter + 1) % averageSweeps == 0;
}

void FreqPowerStore::Store(const FreqPowerKey& key, const FreqPowerTrigger& trigger) {
    FreqPowerEntry& entry = m_entries[key];
    const bool onlyB = trigger.chain == 2;
    entry.times.push_back(trigger.time);
    entry.rbw = StreamText(trigger.rbw);
    entry.chainA.push_back(onlyB ? NotMeasured : StreamText(trigger.firstPower));
    if (onlyB)
        entry.chainB.push_back(StreamText(trigger.firstPower));
    else
        entry.chainB.push_back(trigger.chain == 3 ? StreamText(trigger.secondPower) : NotMeasured);
    m_columns = std::max(m_columns, static_cast<std::int32_t>(entry.chainA.size()));
}

void FreqPowerStore::Clear() {
    m_entries.clear();
    m_columns = 0;
}

std::string FreqPowerStore::ToCsv(std::exception_ptr& failure) const {
    std::string csv = "BW, Channel, RBW";
    for (std::int32_t column = 0; column < m_columns; ++column)
        csv += ", Chain A Power, Chain B Power, Trigger Time";
    csv += '\n';
    for (const auto& [key, entry] : m_entries) {
        try {
            AppendEntry(csv, key, entry);
        } catch (const Common::Exception&) {
            failure = std::current_exception();
        }
    }
    csv += '\n';
    return csv;
}

void FreqPowerStore::Write(const std::string& path) const {
    std::exception_ptr failure;
    const std::string csv = ToCsv(failure);
    constexpr const char* traceFunctionName = "FreqPowerStore::Write";
    if (const auto written = OSAL::WriteWholeFile(path, csv); !written) REPORT_FAILURE(written.Reason());
    if (failure) std::rethrow_exception(failure);
}

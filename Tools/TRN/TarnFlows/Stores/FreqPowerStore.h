// Channel power of every stored trigger, channel by channel, and its CSV table.
#pragma once

#include <compare>
#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <vector>

struct FreqPowerKey {
    std::int32_t band = 0;
    std::uint32_t bandwidth = 0;  ///< bandwidth number
    std::int32_t channel = 0;
    auto operator<=>(const FreqPowerKey&) const = default;  // NOLINT(modernize-use-nullptr): in the generated code
};

/// The three lists grow together, one element a trigger; a chain that was not measured holds "None". An entry that came
/// from a snapshot has no times and no `rbw`.
struct FreqPowerEntry {
    std::string rbw;  ///< kHz
    std::vector<std::string> chainA;
    std::vector<std::string> chainB;
    std::vector<std::string> times;
};

/// One trigger's figures.
struct FreqPowerTrigger {
    std::uint32_t chain = 0;   ///< 1 chain A, 2 chain B, 3 both
    double firstPower = 0.0;   ///< dB, the engine's chain 0: chain B when that is measured alone
    double secondPower = 0.0;  ///< dB, the engine's chain 1; only looked at for both chains
    double rbw = 0.0;          ///< kHz
    std::string time;          ///< local, "%d/%m/%Y %H:%M:%S"
};

class FreqPowerStore {
public:
    using Entries = std::map<FreqPowerKey, FreqPowerEntry>;

    /// While an average runs without max hold, only the trigger that completes `averageSweeps` is stored; a run of
    /// fewer than one sweep never completes.
    static bool IsTriggerDue(bool averageOn, bool maxHoldOn, std::int64_t averageCounter, std::int64_t averageSweeps);

    void Store(const FreqPowerKey& key, const FreqPowerTrigger& trigger);
    /// Empties the store and its column count.
    void Clear();

    /// Snapshots rewrite the entries in place.
    Entries& GetEntries() { return m_entries; }
    const Entries& GetEntries() const { return m_entries; }
    /// Longest chain A list that Store made so far: column groups of the table.
    std::int32_t GetColumns() const { return m_columns; }

    /// The CSV table. An entry whose channel isn't known has no line; `failure` then holds its Common::Exception.
    std::string ToCsv(std::exception_ptr& failure) const;
    /// Writes the table, made whole before the file is touched. A file that can't be created is passed over.
    /// @throws Common::Exception when an entry had no line, after all others are written
    void Write(const std::string& path) const;

private:
    Entries m_entries;
    std::int32_t m_columns = 0;
};

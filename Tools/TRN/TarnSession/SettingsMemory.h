// What earlier lines set, as far as it still holds.
#pragma once

#include <map>
#include <string>

namespace TarnSession {

/// Thread: one at a time.
class SettingsMemory {
public:
    /// A line that succeeded. Its keys count in the order in which they take effect.
    void Take(const std::string& line);
    /// "-band 5.2 -rbw 78.125"; empty when nothing is set.
    std::string Text() const;

    /// Last value of each key that still holds, by the key's own spelling.
    const std::map<std::string, std::string>& Values() const { return m_values; }
    /// A value that came about without a line. Voids nothing.
    void Set(const std::string& key, const std::string& value) { m_values[key] = value; }

private:
    std::map<std::string, std::string> m_values;
};

/// A key that reads or saves results stands on the line of a trigger, which runs after it.
bool ReadsBeforeItsTrigger(const std::string& line);

}  // namespace TarnSession

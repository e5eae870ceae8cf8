// What a person set on earlier lines, for the shell's status.
#pragma once

#include <map>
#include <string>

namespace TarnHost {

class SettingsMemory {
public:
    /// A line that succeeded. Its keys count in the order in which they take effect.
    void Take(const std::string& line);
    /// "-band 5.2 -rbw 78.125"; empty when nothing is set.
    std::string Text() const;

private:
    std::map<std::string, std::string> m_values;  // last value of each key, by the key's own spelling
};

/// A key that reads or saves results stands on the line of a trigger, which runs after it.
bool ReadsBeforeItsTrigger(const std::string& line);

}  // namespace TarnHost

// The settings file of the trace channel: an INI text beside the host program.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Publisher {

/// One such file. Thread: one at a time.
class ListenerConfiguration {
public:
    /// @param candidate  the file that is meant. @param fallback  serves when the first doesn't exist
    ListenerConfiguration(std::string candidate, const std::string& fallback);
    /// "ListenerConfiguration.ini" beside the host program, or in the "/etc" folder; while a debugger is attached in
    /// "../../Debug/x64" instead of the program's own folder, if there is such a folder.
    static ListenerConfiguration& OfThisProcess();

    /// The file that existed when this object was made; else empty.
    const std::string& Path() const { return m_path; }
    /// Reads the output type again when the file's time has changed.
    /// @return 1 when it was read, 0 when it wasn't, be it that nothing changed or that it failed
    int RefreshOutputType();
    /// What was read last; 0 before.
    int OutputType() const { return m_outputType; }
    /// Makes the file. @return 0; 1 when there is one already; -1 when it can't be written
    int WriteConfiguration(int outputType) const;
    /// Rewrites output type and, unless the type is 0, resource name. The file then holds the two sections of
    /// listener and publisher, with every other line of theirs as it was.
    /// @return 0; 1 without a file; -5 when the publisher's section has 519 characters or more; -1, and the file as it
    ///         was, when a key is missing or the file can't be written
    int UpdateConfiguration(int outputType, const std::string& resourceName) const;
    /// Value of a key, without what stands behind a ";"; empty when there is none.
    std::string Value(const std::string& section, const std::string& key) const;

private:
    int Read();

    std::string m_candidate;
    std::string m_path;
    std::filesystem::file_time_type m_time{};
    int m_outputType = 0;
};

// The operations of the process's own file.
std::string GetConfigurationPath();
int RefreshOutputType();
int WriteConfiguration(int outputType);
int UpdateConfiguration(int outputType, const std::string& resourceName);

}  // namespace Publisher

// Record of the calls on the radio: a line a call, written before the call happens.
#pragma once

#include <cstdint>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quayCommand {

/// A text file that is complete up to the last call whatever happens to the process.
class Journal {
public:
    /// Empties the file. An empty path gives a journal that writes nothing.
    /// @return the reason when the file can't be written; this object then writes nothing
    std::optional<std::string> Open(const std::string& path);

    /// "NAME WORD WORD ...": decimal words, one blank between them.
    void Write(std::string_view name, std::span<const std::uint32_t> words);

    /// Set once a line could not be written; nothing is written behind the gap.
    const std::optional<std::string>& Trouble() const { return m_trouble; }

private:
    std::ofstream m_file;
    std::string m_path;
    std::string m_line;
    std::optional<std::string> m_trouble;
};

}  // namespace quayCommand

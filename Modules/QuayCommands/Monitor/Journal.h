// Record of the calls on the radio: a line a call, written before the call happens.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "OSAL/Files.h"

namespace quayCommand {

/// A text file that is complete up to the last call whatever happens to the process.
class Journal {
public:
    Journal() = default;
    ~Journal() { OSAL::CloseFile(m_file); }
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// Empties the file; a link, a pipe or a folder is refused. An empty path gives a journal that writes nothing.
    /// @return the reason when the file can't be written; this object then writes nothing
    std::optional<std::string> Open(const std::string& path);

    /// "NAME WORD WORD ...": decimal words, one blank between them.
    void Write(std::string_view name, std::span<const std::uint32_t> words);

    /// Set once a line could not be written; nothing is written behind the gap.
    const std::optional<std::string>& Trouble() const { return m_trouble; }

private:
    OSAL::FileHandle m_file = OSAL::InvalidFile;
    std::string m_path;
    std::string m_line;
    std::optional<std::string> m_trouble;
};

}  // namespace quayCommand

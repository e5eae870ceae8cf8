#include "Monitor/Journal.h"

#include "Format.h"

namespace quayCommand {

std::optional<std::string> Journal::Open(const std::string& path) {
    m_trouble.reset();
    m_path = path;
    if (path.empty()) return {};
    m_file.open(path, std::ios::binary | std::ios::trunc);
    if (m_file.is_open()) return {};
    return Common::Format("journal: ${1}: can't be opened for writing") % path;
}

void Journal::Write(std::string_view name, std::span<const std::uint32_t> words) {
    if (!m_file.is_open() || m_trouble) return;
    m_line.assign(name);
    for (const auto word : words)
        m_line.append(1, ' ').append(std::to_string(word));
    m_line += '\n';
    m_file << m_line << std::flush;
    if (!m_file)
        m_trouble = Common::Format("journal: ${1}: a line can't be written; it ends before ${2}") % m_path % name;
}

}  // namespace quayCommand

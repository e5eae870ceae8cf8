#include "Monitor/Journal.h"

#include "Format.h"

namespace quayCommand {

std::optional<std::string> Journal::Open(const std::string& path) {
    m_trouble.reset();
    m_path = path;
    if (path.empty()) return {};
    m_file = OSAL::OpenFile(path, OSAL::ReadWrite | OSAL::NoLink, false);
    if (m_file != OSAL::InvalidFile) return {};
    return Common::Format("journal: ${1}: can't be opened for writing; a link or a pipe can be no journal") % path;
}

void Journal::Write(std::string_view name, std::span<const std::uint32_t> words) {
    if (m_file == OSAL::InvalidFile || m_trouble) return;
    m_line.assign(name);
    for (const auto word : words)
        m_line.append(1, ' ').append(std::to_string(word));
    m_line += '\n';
    std::size_t written = 0;
    if (OSAL::WriteFile(m_file, m_line.data(), m_line.size(), written) != OSAL::Success)
        m_trouble = Common::Format("journal: ${1}: a line can't be written; it ends before ${2}") % m_path % name;
}

}  // namespace quayCommand

#include "Console/Progress.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace TarnHost {
namespace {

using Seconds = std::chrono::duration<double>;
constexpr auto refreshPeriod = std::chrono::milliseconds(200);

std::string RestText(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole < 120) return std::to_string(whole) + " s left";
    return std::to_string((whole + 59) / 60) + " min left";
}

}  // namespace

std::string ProgressText(std::size_t done, std::size_t total, Seconds elapsed, const std::string& unit) {
    std::string text = std::to_string(done) + " of " + std::to_string(total) + " " + unit;
    if (done == 0 || elapsed.count() <= 0) return text;
    const double rate = static_cast<double>(done) / elapsed.count();
    std::array<char, 64> rateText{};
    std::snprintf(rateText.data(), rateText.size(), ", %.1f ", rate);
    return text + rateText.data() + unit + "/s, " + RestText(static_cast<double>(total - std::min(done, total)) / rate);
}

void StatusLine::Show(const std::string& text) {
    if (!m_isOn) return;
    const std::size_t columns = m_terminal.Columns();
    // back to the line's start, the text, clear the rest of the line
    m_terminal.Write("\r" + (columns > 0 ? text.substr(0, columns - 1) : text) + "\x1b[K");
    m_terminal.Flush();
    m_isShown = true;
}

void StatusLine::Clear() {
    if (!m_isShown) return;
    m_terminal.Write("\r\x1b[K");
    m_terminal.Flush();
    m_isShown = false;
}

ResultCounter::ResultCounter(std::filesystem::path file) : m_file(std::move(file)), m_before(Now()) {}

ResultCounter::Stamp ResultCounter::Now() const {
    std::error_code error;
    Stamp stamp;
    stamp.time = std::filesystem::last_write_time(m_file, error);
    if (error) return {};
    stamp.size = std::filesystem::file_size(m_file, error);
    return error ? Stamp{} : stamp;
}

bool ResultCounter::IsFresh() const {
    return Now() != m_before;
}

std::size_t ResultCounter::Count() {
    if (!IsFresh()) return 0;
    std::ifstream file(m_file, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(m_read));
    std::array<char, 65536> block;
    while (file.read(block.data(), block.size()) || file.gcount() > 0) {
        const auto count = file.gcount();
        m_lines += static_cast<std::size_t>(std::count(block.data(), block.data() + count, '\n'));
        m_read += static_cast<std::uintmax_t>(count);
    }
    return m_lines > 0 ? m_lines - 1 : 0;
}

AnalysisProgress::AnalysisProgress(Output& terminal, const std::filesystem::path& resultFile, std::size_t total)
    : m_line(terminal), m_counter(resultFile), m_total(total) {
    if (m_line.IsOn()) m_thread = std::thread([this] { Work(); });
}

void AnalysisProgress::Work() {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    while (!m_wakeUp.wait_for(lock, refreshPeriod, [this] { return m_isStopping; })) {
        const Seconds elapsed = std::chrono::steady_clock::now() - start;
        m_line.Show(ProgressText(std::min(m_counter.Count(), m_total), m_total, elapsed));
    }
    m_line.Clear();
}

void AnalysisProgress::Stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_wakeUp.notify_all();
    const std::lock_guard lock(m_joinMutex);
    if (m_thread.joinable()) m_thread.join();
}

}  // namespace TarnHost

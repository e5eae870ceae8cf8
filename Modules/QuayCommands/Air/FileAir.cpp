#include "Air/FileAir.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "Format.h"

namespace quayCommand {
namespace {

namespace fs = std::filesystem;

// Some 256 MB of samples.
constexpr std::size_t MaxSamples = std::size_t{64} << 20;
constexpr std::uintmax_t MaxFileBytes = std::uintmax_t{1} << 30;

std::optional<double> NumberAtStart(const std::string& text) {
    try {
        return std::stod(text);
    } catch (const std::logic_error&) {
        return {};
    }
}

/// The text of Q; see ReadSampleLine.
std::string ImaginaryText(const std::string& line) {
    const auto blank = line.find(' ');
    const auto dropped = line.find_first_not_of(' ', blank);
    if (blank == std::string::npos || dropped == std::string::npos) return line;
    return line.substr(dropped + 1, line.find(' ', dropped + 1) - dropped - 1);
}

OSAL::Outcome<FileAir::Recording> ReadRecording(const fs::path& path, std::size_t room) {
    std::error_code error;
    if (fs::file_size(path, error) > MaxFileBytes && !error)
        return OSAL::Refusal{Common::Format("${1}: is larger than a sample file can be") % path.string()};
    std::ifstream file(path, std::ios::binary);
    if (error || !file) return OSAL::Refusal{Common::Format("${1}: can't be read") % path.string()};
    FileAir::Recording samples;
    std::string line;
    while (std::getline(file, line)) {
        auto sample = ReadSampleLine(line);
        if (sample.IsRefused())
            return OSAL::Refusal{Common::Format("${1}:${2}: ${3}") % path.string() % (samples.size() + 1) %
                                 sample.Reason()};
        if (samples.size() == room)
            return OSAL::Refusal{Common::Format("${1}: more than ${2} samples in all") % path.string() % MaxSamples};
        samples.push_back(sample.Value());
    }
    if (file.bad()) return OSAL::Refusal{Common::Format("${1}: can't be read to its end") % path.string()};
    if (samples.empty()) return OSAL::Refusal{Common::Format("${1}: holds no samples") % path.string()};
    return samples;
}

/// The files of `path` in the order in which they are heard.
OSAL::Outcome<std::vector<fs::path>> FilesOf(const fs::path& path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) return std::vector{path};
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        const auto name = entry->path().filename().string();
        if (entry->is_regular_file() && !name.starts_with('.') && name != "result.csv") files.push_back(entry->path());
    }
    if (error || files.empty())
        return OSAL::Refusal{Common::Format("${1}: ${2}") % path.string() %
                             (error ? "the folder can't be listed" : "no sample file in this folder")};
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

OSAL::Outcome<FileAir::Sample> ReadSampleLine(const std::string& line) {
    const auto i = NumberAtStart(line.substr(0, line.find(' ')));
    const auto q = NumberAtStart(ImaginaryText(line));
    if (!i || !q) return OSAL::Refusal{Common::Format("${1} isn't a number") % (i ? "Q" : "I")};
    const auto whole = [](double value) { return std::trunc(value); };
    const auto fits = [](double value) { return value >= -32768.0 && value <= 32767.0; };
    if (!fits(whole(*i)) || !fits(whole(*q)))
        return OSAL::Refusal{Common::Format("${1} isn't a code of 16 bits") % (fits(whole(*i)) ? "Q" : "I")};
    return FileAir::Sample{static_cast<std::int16_t>(*i), static_cast<std::int16_t>(*q)};
}

OSAL::Outcome<FileAir> FileAir::Open(const std::string& path) {
    auto files = FilesOf(path);
    if (files.IsRefused()) return OSAL::Refusal{files.Reason()};
    FileAir air;
    air.m_path = path;
    std::size_t room = MaxSamples;
    for (const auto& file : files.Value()) {
        auto recording = ReadRecording(file, room);
        if (recording.IsRefused()) return OSAL::Refusal{recording.Reason()};
        room -= recording.Value().size();
        air.m_recordings.push_back(std::move(recording.Value()));
    }
    air.m_counted.resize(air.m_recordings.size());
    return air;
}

std::string FileAir::Describe() const {
    return Common::Format("stored captures: ${1} file(s) of ${2}") % m_recordings.size() % m_path;
}

AirAbilities FileAir::Abilities() const {
    constexpr MhzRange Any{0.0, 1e6};  // the tuning plays no part
    return {Any, Any, (1u << MaxChains) - 1, GainTruth::Nominal, false};
}

OSAL::Outcome<CaptureFacts> FileAir::Capture(const CaptureRequest& request) {
    CaptureFacts facts;
    facts.centreMhz = request.centreMhz;
    facts.sampleRateMhz = request.sampleRateMhz;
    for (std::size_t c = 0; c < request.chains.size(); ++c) {
        const auto& chain = request.chains[c];
        const auto& recording = m_recordings[m_next];
        auto& counted = m_counted[m_next];
        m_next = (m_next + 1) % m_recordings.size();
        const auto count = std::min(recording.size(), chain.i.size());
        for (std::size_t n = 0; n < count; ++n) {
            chain.i[n] = recording[n].i;
            chain.q[n] = recording[n].q;
        }
        if (counted.samples != count) counted = {count, CountOverloaded(chain)};
        facts.chains[c] = {chain.gainDb, false, counted.overloaded, count};
    }
    return facts;
}

OSAL::Outcome<std::unique_ptr<IAir>> OpenFileAir(const std::string& path, const AirContext&) {
    auto air = FileAir::Open(path);
    if (air.IsRefused()) return air.Why();
    return std::unique_ptr<IAir>(std::make_unique<FileAir>(std::move(air.Value())));
}

}  // namespace quayCommand

#include "Air/FileAir.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>

#include "Format.h"
#include "SampleReader.h"

namespace quayCommand {
namespace {

namespace fs = std::filesystem;

// Some 256 MB of samples.
constexpr std::size_t MaxSamples = std::size_t{64} << 20;
// Samples that are read from a file at once.
constexpr std::size_t ReadSamples = std::size_t{1} << 14;

/// Takes codes of 16 bits over, up to the first sample that is none.
/// @return whether all of them are
bool Append(FileAir::Recording& recording, std::span<const double> i, std::span<const double> q) {
    const auto isCode = [](double value) { return value > -32769.0 && value < 32768.0; };
    for (std::size_t n = 0; n < i.size(); ++n) {
        if (!isCode(i[n]) || !isCode(q[n])) return false;
        recording.push_back({static_cast<std::int16_t>(i[n]), static_cast<std::int16_t>(q[n])});
    }
    return true;
}

OSAL::Outcome<FileAir::Recording> ReadRecording(const fs::path& path, std::size_t room) {
    const auto refuse = [&](const std::string& reason) {
        return OSAL::Refusal{Common::Format("${1}: ${2}") % path.string() % reason};
    };
    const auto refuseLine = [&](std::size_t line, const std::string& reason) {
        return OSAL::Refusal{Common::Format("${1}:${2}: ${3}") % path.string() % line % reason};
    };
    auto reader = SampleFiles::SampleReader::Open(path.string());
    if (!reader) return refuse("can't be read");
    FileAir::Recording recording;
    std::vector<double> i(ReadSamples), q(ReadSamples);
    SampleFiles::SampleReader::Stretch stretch;
    do {
        stretch = reader->Read(i, q);
        if (recording.size() + stretch.samples > room)
            return refuse(Common::Format("more than ${1} samples in all") % MaxSamples);
        if (!Append(recording, std::span(i).first(stretch.samples), std::span(q).first(stretch.samples)))
            return refuseLine(recording.size() + 1, "I or Q isn't a code of 16 bits");
        if (!stretch.state) return refuseLine(recording.size() + 1, FaultText(stretch.state));
    } while (stretch.samples == i.size());
    if (reader->HasFailed()) return refuse("can't be read to its end");
    if (recording.empty()) return refuse("holds no samples");
    return recording;
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

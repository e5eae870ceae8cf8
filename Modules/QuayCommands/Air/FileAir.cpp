#include "Air/FileAir.h"

#include <algorithm>
#include <filesystem>
#include <span>

#include "CaptureName.h"
#include "ChannelPlan.h"
#include "Format.h"
#include "SampleReader.h"
#include "TextTools.h"

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
OSAL::Outcome<std::vector<std::string>> FilesOf(const fs::path& path) {
    std::error_code error;
    if (!fs::exists(path, error)) return OSAL::Refusal{Common::Format("${1}: can't be read") % path.string()};
    if (!fs::is_directory(path, error)) return std::vector{path.string()};
    std::vector<std::string> files;  // of a million entries, fs::path takes far more room and time to sort
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        const auto name = entry->path().filename().string();
        if (entry->is_regular_file() && !name.starts_with('.') && name != "result.csv")
            files.push_back(entry->path().string());
    }
    if (error || files.empty())
        return OSAL::Refusal{Common::Format("${1}: ${2}") % path.string() %
                             (error ? "the folder can't be listed" : "no sample file in this folder")};
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

/// Nothing for a name that tells no tuning; a refusal for one that tells a tuning that doesn't exist.
OSAL::Outcome<std::optional<FileAir::Tuning>> FileAir::TuningOf(const std::string& name) {
    const auto texts = SampleFiles::ReadCaptureName(name);
    if (!texts) return std::optional<Tuning>();
    const auto band = RadioFacts::FindBand(texts->band);
    const auto bandwidth = RadioFacts::FindBandwidth(texts->bandwidth);
    const auto channel = WholeNumber(texts->channel);
    if (!band || !bandwidth || !channel || *channel > 1000 ||
        !RadioFacts::HasChannel(*band, *bandwidth, static_cast<std::uint32_t>(*channel)))
        return OSAL::Refusal{
            Common::Format("its name tells band ${1}, channel ${2} and width ${3}, which don't exist") % texts->band %
            texts->channel % texts->bandwidth};
    const unsigned chains = texts->chain == "A" ? 1 : texts->chain == "B" ? 2 : texts->chain == "AB" ? 3 : 0;
    if (chains == 0) return OSAL::Refusal{Common::Format("its name tells chain ${1}, not A, B or AB") % texts->chain};
    return std::optional(Tuning{RadioFacts::CentreMhz(*band, static_cast<double>(*channel)),
                                static_cast<double>(RadioFacts::WidthMhz(*bandwidth)), chains});
}

OSAL::Outcome<FileAir> FileAir::Open(const std::string& path, StoredTuning tuning) {
    auto files = FilesOf(path);
    if (files.IsRefused()) return files.Why();
    FileAir air;
    air.m_path = path;
    std::size_t room = MaxSamples;
    for (const auto& file : files.Value()) {
        Stored stored;
        if (tuning == StoredTuning::ByName) {
            auto told = TuningOf(fs::path(file).filename().string());
            if (told.IsRefused()) return OSAL::Refusal{Common::Format("${1}: ${2}") % file % told.Reason()};
            if (!*told) continue;
            stored.tuning = *told;
        }
        auto recording = ReadRecording(file, room);
        if (recording.IsRefused()) return recording.Why();
        room -= recording->size();
        stored.samples = std::move(*recording);
        air.m_stored.push_back(std::move(stored));
    }
    if (air.m_stored.empty())
        return OSAL::Refusal{
            Common::Format("${1}: no file name tells a tuning, such as BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_1.txt; "
                           "other captures can only be heard as tuned") %
            path};
    return air;
}

std::string FileAir::Describe() const {
    return Common::Format("stored captures: ${1} file(s) of ${2}") % m_stored.size() % m_path;
}

AirAbilities FileAir::Abilities() const {
    constexpr MhzRange Any{0.0, 1e6};  // what is there stands in the names
    return {Any, Any, (1u << MaxChains) - 1, GainTruth::Nominal, false};
}

FileAir::Stored* FileAir::Next(const CaptureRequest& request, unsigned chain) {
    Stored* next = nullptr;
    for (auto& stored : m_stored) {
        const auto& tuning = stored.tuning;
        const bool fits =
            !tuning || (tuning->centreMhz == request.centreMhz && tuning->widthMhz == request.bandwidthMhz &&
                        (tuning->chainMask >> chain & 1) != 0);
        if (fits && (!next || stored.heard < next->heard)) next = &stored;
    }
    return next;
}

OSAL::Outcome<CaptureFacts> FileAir::Capture(const CaptureRequest& request) {
    CaptureFacts facts;
    facts.centreMhz = request.centreMhz;
    facts.sampleRateMhz = request.sampleRateMhz;
    std::vector<Stored*> taken;
    for (const auto& chain : request.chains) {
        if (auto* const next = Next(request, chain.chain)) {
            ++next->heard;
            taken.push_back(next);
            continue;
        }
        for (auto* const stored : taken)
            --stored->heard;
        return OSAL::Refusal{Common::Format("no stored capture at ${1} MHz, ${2} MHz wide, on chain ${3} in ${4}") %
                             request.centreMhz % request.bandwidthMhz % (chain.chain == 0 ? "A" : "B") % m_path};
    }
    for (std::size_t c = 0; c < taken.size(); ++c) {
        const auto& chain = request.chains[c];
        auto& stored = *taken[c];
        const auto count = std::min(stored.samples.size(), chain.i.size());
        for (std::size_t n = 0; n < count; ++n) {
            chain.i[n] = stored.samples[n].i;
            chain.q[n] = stored.samples[n].q;
        }
        std::ranges::fill(chain.i.subspan(count), 0.0);
        std::ranges::fill(chain.q.subspan(count), 0.0);
        if (stored.counted.samples != count) stored.counted = {count, CountOverloaded(chain)};
        facts.chains[c] = {chain.gainDb, false, stored.counted.overloaded, count};
    }
    return facts;
}

OSAL::Outcome<std::unique_ptr<IAir>> OpenFileAir(const std::string& path, const AirContext& context) {
    auto air = FileAir::Open(path, context.storedTuning);
    if (air.IsRefused()) return air.Why();
    return std::unique_ptr<IAir>(std::make_unique<FileAir>(std::move(air.Value())));
}

}  // namespace quayCommand

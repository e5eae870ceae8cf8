// An air made of stored captures.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Air/Air.h"
#include "Air/AirContext.h"

namespace quayCommand {

/// Files of ADC samples in the order of their names. Each chain of a capture takes the next file that was recorded as
/// it is tuned, and behind the last one the first again. The gain plays no part: the codes are what was stored.
class FileAir : public IAir {
public:
    struct Sample {
        std::int16_t i, q;
    };
    using Recording = std::vector<Sample>;

    /// One file, or a folder's; hidden files, "result.csv" and folders within are left out. A refusal begins with the
    /// file and, for a bad sample, its line number.
    static OSAL::Outcome<FileAir> Open(const std::string& path, StoredTuning tuning);

    std::string Describe() const override;
    AirAbilities Abilities() const override;
    OSAL::Outcome<CaptureFacts> Capture(const CaptureRequest& request) override;

private:
    /// What a file was recorded on.
    struct Tuning {
        double centreMhz = 0.0;
        double widthMhz = 0.0;
        unsigned chainMask = 0;
    };
    struct Stored {
        std::optional<Tuning> tuning;  ///< nothing: heard whatever the receiver is tuned to
        Recording samples;
        std::uint64_t heard = 0;  ///< how often
        /// What a capture of the recording's first samples overloads; the next one of as many is not counted again.
        struct {
            std::size_t samples = 0;
            std::size_t overloaded = 0;
        } counted;
    };
    static OSAL::Outcome<std::optional<Tuning>> TuningOf(const std::string& name);
    /// The next file to be heard so; null when there is none.
    Stored* Next(const CaptureRequest& request, unsigned chain);

    std::string m_path;
    std::vector<Stored> m_stored;
};

/// The kind's opener: `path` is a file or a folder.
OSAL::Outcome<std::unique_ptr<IAir>> OpenFileAir(const std::string& path, const AirContext& context);

}  // namespace quayCommand

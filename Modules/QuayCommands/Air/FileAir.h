// An air made of stored captures.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Air/AirKinds.h"

namespace quayCommand {

/// Files of ADC samples, one after the other and then from the first again: each chain of a capture takes the next one.
/// The tuning and the gain play no part: the codes are what was stored.
class FileAir : public IAir {
public:
    struct Sample {
        std::int16_t i, q;
    };
    using Recording = std::vector<Sample>;

    /// One file, or a folder's files in the order of their names; hidden files, "result.csv" and folders within are
    /// left out. A refusal begins with the file and, for a bad sample, its line number.
    static OSAL::Outcome<FileAir> Open(const std::string& path);

    std::string Describe() const override;
    AirAbilities Abilities() const override;
    OSAL::Outcome<CaptureFacts> Capture(const CaptureRequest& request) override;
    void SetWorkload(bool) override {}

private:
    std::string m_path;
    /// What a capture of a recording's first samples overloads; the next one of as many is not counted again.
    struct Counted {
        std::size_t samples = 0;
        std::size_t overloaded = 0;
    };

    std::vector<Recording> m_recordings;
    std::vector<Counted> m_counted;  ///< one for each recording
    std::size_t m_next = 0;
};

/// The kind's opener: `path` is a file or a folder.
OSAL::Outcome<std::unique_ptr<IAir>> OpenFileAir(const std::string& path, const AirContext& context);

}  // namespace quayCommand

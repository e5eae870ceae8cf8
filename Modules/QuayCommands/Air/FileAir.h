// An air made of stored captures.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Air/Air.h"
#include "OSAL/Outcome.h"

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
    bool Capture(const CaptureRequest& request) override;

private:
    std::string m_path;
    std::vector<Recording> m_recordings;
    std::size_t m_next = 0;
};

/// One line of a sample file: I up to the first blank, blanks, one character that is dropped, Q. Text behind a number
/// is ignored; a line without anything behind its first number has Q equal to I. Codes are cut to whole numbers.
OSAL::Outcome<FileAir::Sample> ReadSampleLine(const std::string& line);

}  // namespace quayCommand

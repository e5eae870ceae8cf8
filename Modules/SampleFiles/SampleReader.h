// Stored ADC samples as text, one sample a line: I up to the first blank, blanks, one character that is dropped, Q up
// to the next blank or the end, such as "12 ,-34". With nothing behind the first field, Q equals I.
#pragma once

#include <cstddef>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SampleFiles {

/// Longest line of a sample file in bytes, without its end.
constexpr std::size_t MaxLineBytes = std::size_t{1} << 20;

/// Why a line is no sample.
enum class LineFault {
    None,
    NotANumber,  ///< one of the two fields
    OutOfRange,  ///< a number that no double holds
    TooLong      ///< no end within `MaxLineBytes`
};

struct LineState {
    LineFault fault = LineFault::None;
    char field = 'I';  ///< 'I' or 'Q', at fault
    explicit operator bool() const { return fault == LineFault::None; }
};

/// One line, with or without a carriage return at its end, by the rules of `ParseReal`. Fills `i` and `q` as far as the
/// line goes.
LineState ReadSampleLine(std::string_view line, double& i, double& q);

/// "I isn't a number" and the like, for a person.
std::string FaultText(LineState state);

/// Number of the first line that is no sample, and why: "line 17: I isn't a number"; empty when all are, or when the
/// file can't be opened.
std::string BadLine(const std::string& path);

/// Reads a sample file from its start on. Memory: a block, and a line that it cuts.
class SampleReader {
public:
    /// Nothing when the path is no regular file (a folder, a pipe, a device) or can't be opened.
    static std::optional<SampleReader> Open(const std::string& path);

    struct Stretch {
        std::size_t samples = 0;  ///< read by this call
        LineState state;          ///< of the line behind them; nothing is read behind a bad one
    };
    /// The next samples, at most as many as `i` holds; fewer at the end of the file and before a bad line. The last
    /// line of a file counts without a line feed too. What lies beyond the samples stays as it was.
    /// @param q  as long as `i`
    Stretch Read(std::span<double> i, std::span<double> q);
    /// The file's medium failed: what was read isn't all.
    bool HasFailed() const { return m_file.bad(); }

private:
    static constexpr std::size_t BlockBytes = std::size_t{64} << 10;

    explicit SampleReader(std::ifstream file) : m_file(std::move(file)), m_block(BlockBytes) {}
    /// Reads a block. @return false at the end of the file
    bool Refill();
    std::size_t TakePlainLines(std::span<double> i, std::span<double> q);
    LineState TakeLine(double& i, double& q);
    LineState EndBegunLine(double& i, double& q);

    std::ifstream m_file;
    std::vector<char> m_block;
    std::string_view m_lines;  ///< whole lines of the block that aren't taken yet; ends in a line feed or is empty
    std::string_view m_tail;   ///< of the block, behind its last line feed
    std::string m_begun;       ///< a line that blocks before began
};

}  // namespace SampleFiles

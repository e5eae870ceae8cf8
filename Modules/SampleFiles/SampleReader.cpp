#include "SampleReader.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include "Numbers.h"

namespace SampleFiles {
namespace {

LineFault FaultOf(std::errc status) {
    if (status == std::errc()) return LineFault::None;
    return status == std::errc::result_out_of_range ? LineFault::OutOfRange : LineFault::NotANumber;
}

/// The value of up to 8 digits that stand in a word's high bytes, the first one lowest; zeros below them.
std::uint64_t DigitsToNumber(std::uint64_t digits) {
    digits = digits * 10 + (digits >> 8);  // each second byte: two digits
    constexpr std::uint64_t Pairs = 0x000000FF000000FF;
    constexpr std::uint64_t Outer = 100 + (std::uint64_t{1000000} << 32), Inner = 1 + (std::uint64_t{10000} << 32);
    return ((digits & Pairs) * Outer + ((digits >> 16) & Pairs) * Inner) >> 32;
}

/// A plain whole number of up to 7 bytes; answers its end, or null when the text is anything else. All digits are taken
/// at once: their number differs from line to line, and a wrong guess costs more than the number itself. The next
/// number waits for this one's end alone, so that is found without a look at the sign.
/// @param end  behind the text's last byte
inline const char* PlainInteger(const char* at, const char* end, double& value) {
    if (std::endian::native != std::endian::little || end - at < 8) return nullptr;
    std::uint64_t text = 0;
    std::memcpy(&text, at, sizeof text);
    text ^= 0x3030303030303030;  // digits become 0 to 9
    constexpr std::uint64_t First = 0x80;
    const std::uint64_t others = ((text + 0x7676767676767676) | text) & 0x8080808080808080;  // true up to the first
    const int bytes = std::countr_zero(others & ~First) / 8;
    const std::uint64_t isNegative = *at == '-' ? 1 : 0;
    const int digits = bytes - static_cast<int>(isNegative);
    if (bytes == 8 || digits == 0 || (others & First) != isNegative * First) return nullptr;
    const auto magnitude = static_cast<double>(DigitsToNumber((text >> 8 * isNegative) << (64 - 8 * digits)));
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | isNegative << 63);  // "-0" keeps its sign
    return at + bytes;
}

/// The usual line, such as "-12 ,34", without a search for its end. No step passes the line feed, so text that ends in
/// one is never overrun.
/// @return behind the line feed; null, and nothing decided, for a line of another form
const char* PlainLine(const char* at, const char* end, double& i, double& q) {
    at = PlainInteger(at, end, i);
    if (!at || *at != ' ') return nullptr;
    while (*at == ' ')
        ++at;
    if (*at == '\n') return nullptr;
    at = PlainInteger(at + 1, end, q);
    if (!at || *at == '\n') return at ? at + 1 : nullptr;
    return *at == '\r' && at[1] == '\n' ? at + 2 : nullptr;
}

}  // namespace

LineState ReadSampleLine(std::string_view line, double& i, double& q) {
    if (line.size() > MaxLineBytes) return {LineFault::TooLong};
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t blank = line.find(' ');
    const auto first = ParseReal(line.substr(0, blank));
    if (!first.IsNumber()) return {FaultOf(first.status), 'I'};
    i = first.value;
    const std::size_t dropped = line.find_first_not_of(' ', blank);
    if (blank == std::string_view::npos || dropped == std::string_view::npos) {
        q = i;
        return {};
    }
    const std::string_view rest = line.substr(dropped + 1);
    const auto second = ParseReal(rest.substr(0, rest.find(' ')));
    if (!second.IsNumber()) return {FaultOf(second.status), 'Q'};
    q = second.value;
    return {};
}

std::string FaultText(LineState state) {
    switch (state.fault) {
        case LineFault::None:
            break;
        case LineFault::NotANumber:
            return std::string(1, state.field) + " isn't a number";
        case LineFault::OutOfRange:
            return std::string(1, state.field) + " is out of range";
        case LineFault::TooLong:
            return "the line has no end within " + std::to_string(MaxLineBytes) + " bytes";
    }
    return {};
}

std::optional<SampleReader> SampleReader::Open(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;  // opening a pipe would wait for a writer
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);  // the block is the only buffer
    file.open(path, std::ios::in | std::ios::binary);
    if (!file) return std::nullopt;
    return SampleReader(std::move(file));
}

bool SampleReader::Refill() {
    m_begun.append(m_tail);
    m_tail = {};
    m_file.read(m_block.data(), static_cast<std::streamsize>(m_block.size()));
    const std::string_view text(m_block.data(), static_cast<std::size_t>(m_file.gcount()));
    const auto feed = text.rfind('\n');
    const auto whole = feed == std::string_view::npos ? 0 : feed + 1;
    m_lines = text.substr(0, whole);
    m_tail = text.substr(whole);
    return !text.empty();
}

/// Takes whole lines as long as they are of the usual form.
/// @return how many
std::size_t SampleReader::TakePlainLines(std::span<double> i, std::span<double> q) {
    const char* at = m_lines.data();
    const char* const end = at + m_lines.size();
    std::size_t count = 0;
    while (at != end && count < i.size()) {
        const char* const next = PlainLine(at, end, i[count], q[count]);
        if (!next) break;
        at = next;
        ++count;
    }
    m_lines = {at, end};
    return count;
}

/// The next of the whole lines, in whatever form.
LineState SampleReader::TakeLine(double& i, double& q) {
    const auto feed = m_lines.find('\n');
    const auto line = m_lines.substr(0, feed);
    m_lines.remove_prefix(feed + 1);
    return ReadSampleLine(line, i, q);
}

/// The line that blocks before began, up to the first line feed here or to the end of the file.
LineState SampleReader::EndBegunLine(double& i, double& q) {
    const auto feed = m_lines.find('\n');
    m_begun.append(m_lines.substr(0, feed));
    m_lines.remove_prefix(feed == std::string_view::npos ? m_lines.size() : feed + 1);
    const auto state = ReadSampleLine(m_begun, i, q);
    m_begun.clear();
    return state;
}

SampleReader::Stretch SampleReader::Read(std::span<double> i, std::span<double> q) {
    Stretch stretch;
    auto& [samples, state] = stretch;
    bool isMore = true;
    while (state && samples < i.size()) {
        if (m_lines.empty() && isMore) {
            isMore = Refill();
            if (m_begun.size() + m_tail.size() > MaxLineBytes) state = {LineFault::TooLong};
        } else if (!m_begun.empty()) {
            state = EndBegunLine(i[samples], q[samples]);
            samples += state ? 1 : 0;
        } else if (m_lines.empty()) {
            break;
        } else if (const auto plain = TakePlainLines(i.subspan(samples), q.subspan(samples)); plain > 0) {
            samples += plain;
        } else {
            state = TakeLine(i[samples], q[samples]);
            samples += state ? 1 : 0;
        }
    }
    return stretch;
}

std::string BadLine(const std::string& path) {
    auto reader = SampleReader::Open(path);
    if (!reader) return {};
    std::vector<double> i(4096), q(4096);
    std::size_t lines = 0;
    while (true) {
        const auto stretch = reader->Read(i, q);
        lines += stretch.samples;
        if (!stretch.state) return "line " + std::to_string(lines + 1) + ": " + FaultText(stretch.state);
        if (stretch.samples < i.size()) return {};
    }
}

}  // namespace SampleFiles

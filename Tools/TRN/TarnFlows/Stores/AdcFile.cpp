#include "Stores/AdcFile.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "Support/FlowText.h"

namespace AdcFile {

namespace {

/// Bytes that are read from a file at once.
constexpr std::size_t ChunkBytes = 64 * 1024;

void SetIQ(double& i, double& q, std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t blank = line.find(' ');
    i = FlowText::TextToDouble(line.substr(0, blank));
    const std::size_t dropped = line.find_first_not_of(' ', blank);
    if (blank == std::string_view::npos || dropped == std::string_view::npos) {
        q = i;
        return;
    }
    const std::string_view rest = line.substr(dropped + 1);
    q = FlowText::TextToDouble(rest.substr(0, rest.find(' ')));
}

/// A plain whole number of up to 9 digits; answers its end, or null when the text is anything else.
const char* PlainInteger(const char* at, double& value) {
    const bool negative = *at == '-';
    if (negative) ++at;
    const char* const digits = at;
    std::uint32_t magnitude = 0;
    for (; static_cast<unsigned char>(*at - '0') <= 9 && at - digits < 10; ++at)
        magnitude = magnitude * 10 + static_cast<unsigned char>(*at - '0');
    if (at == digits || at - digits > 9) return nullptr;
    value = negative ? -static_cast<double>(magnitude) : static_cast<double>(magnitude);  // "-0" keeps its sign
    return at;
}

/// The usual line, such as "-12 ,34", without a search for its end. No step passes the line feed, so text that ends in
/// one is never overrun.
/// @return behind the line feed; null, and nothing decided, for a line of another form
const char* PlainLine(const char* at, double& i, double& q) {
    at = PlainInteger(at, i);
    if (!at || *at != ' ') return nullptr;
    while (*at == ' ')
        ++at;
    if (*at == '\n') return nullptr;
    at = PlainInteger(at + 1, q);
    if (at && *at == '\r') ++at;
    return at && *at == '\n' ? at + 1 : nullptr;
}

/// Takes the samples of whole lines as text comes in.
class Reader {
public:
    Reader(double* i, double* q, std::size_t n) : m_i(i), m_q(q), m_left(n), m_read(0) {}

    bool IsFull() const { return m_left == 0; }
    std::size_t Read() const { return m_read; }

    void Take(std::string_view text) {
        if (!m_begun.empty()) text = EndBegunLine(text);
        const std::size_t lastFeed = text.rfind('\n');
        const std::size_t whole = lastFeed == std::string_view::npos ? 0 : lastFeed + 1;
        TakeLines(text.substr(0, whole));
        m_begun.append(text.substr(whole));
    }

    /// The last line of a file counts without a line feed too.
    void End() {
        if (!m_begun.empty() && !IsFull()) TakeLine(m_begun);
    }

private:
    /// Adds the text up to its first line feed to the line that earlier text began; answers what is behind.
    std::string_view EndBegunLine(std::string_view text) {
        const std::size_t feed = text.find('\n');
        m_begun.append(text.substr(0, feed));
        if (feed == std::string_view::npos) return {};
        TakeLine(m_begun);
        m_begun.clear();
        return text.substr(feed + 1);
    }

    /// @param text  ends in a line feed or is empty
    void TakeLines(std::string_view text) {
        const char* at = text.data();
        const char* const end = at + text.size();
        while (at != end && !IsFull()) {
            if (const char* next = PlainLine(at, *m_i, *m_q)) {
                at = next;
                Advance();
                continue;
            }
            const auto* feed = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
            TakeLine({at, feed});
            at = feed + 1;
        }
    }

    void TakeLine(std::string_view line) {
        SetIQ(*m_i, *m_q, line);
        Advance();
    }

    void Advance() {
        ++m_i;
        ++m_q;
        --m_left;
        ++m_read;
    }

    double* m_i;
    double* m_q;
    std::size_t m_left;
    std::size_t m_read;
    std::string m_begun;  ///< a line that the text so far has begun
};

}  // namespace

std::string ParseParamFromFilename(const std::string& name, const std::string& key) {
    const std::size_t found = name.find(key);
    if (found == std::string::npos) return {};
    const std::size_t begin = found + key.size();
    const std::size_t end = name.find('_', begin);
    return end == std::string::npos ? std::string() : name.substr(begin, end - begin);
}

bool GetParamsFromFilename(const std::string& name, std::string& band, std::string& channel, std::string& bandwidth,
                           std::string& chain) {
    band = ParseParamFromFilename(name, "BAND_");
    if (band.empty()) return false;
    channel = ParseParamFromFilename(name, "CHANNEL_");
    if (channel.empty()) return false;
    bandwidth = ParseParamFromFilename(name, "BW_");
    if (bandwidth.empty()) return false;
    chain = ParseParamFromFilename(name, "CHAIN_");
    return !chain.empty();
}

void SetIQFromLine(double* i, double* q, const std::string& line) {
    SetIQ(*i, *q, line);
}

std::optional<std::size_t> ReadAdcFile(const std::string& path, double* i, double* q, std::size_t n) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;  // opening a pipe would wait for a writer
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);  // the chunk below is the only buffer
    file.open(path, std::ios::in | std::ios::binary);
    if (!file) return std::nullopt;

    std::array<char, ChunkBytes> chunk;
    Reader reader(i, q, n);
    while (file && !reader.IsFull()) {
        file.read(chunk.data(), chunk.size());
        reader.Take({chunk.data(), static_cast<std::size_t>(file.gcount())});
    }
    reader.End();
    return reader.Read();
}

}  // namespace AdcFile

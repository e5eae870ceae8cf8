// The strings of one binary XML document, cut into parts that share one code.
//
// In a stream, numbers low byte first: a `huffman_streambuf` block with the alphabet (u32 count; u8 width W of a
// frequency; for each part its frequency in W bytes, its bytes and one NUL byte); u32 length of the sequence; the codes
// of the sequence's parts, filled up to a byte.
#pragma once

#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "Huffman/Dictionary.h"

/// Thread: one thread at a time.
class BinaryStringTable {
public:
    /// Appends the parts of `text`: runs of ASCII letters and digits, every other byte on its own, and an empty part
    /// behind the last one. @return the place of the first part in the sequence
    std::uint32_t Add(std::string_view text);
    /// Each gives true on success. A table that can't be read stays as it was.
    bool Write(std::streambuf* target) const;
    bool Read(std::streambuf* source);

    /// Puts the parts from `index` up to the next empty one together; the empty string behind the end.
    /// @return false when the text would be longer than `mostBytes`
    bool GetString(std::uint32_t index, std::string& text, std::uint64_t mostBytes = ~0ull) const;
    /// Bytes of all parts of the sequence, each with its closing byte.
    std::uint64_t GetTotalBytes() const { return m_totalBytes; }

private:
    using Parts = Huffman::dictionary<std::string, char>;

    void AddPart(std::string_view part);

    std::vector<std::uint32_t> m_sequence;  // places of parts
    Parts m_parts;
    std::uint64_t m_totalBytes = 0;
};

// Numbers in a stream, low byte first.
#pragma once

#include <cstdint>
#include <streambuf>

namespace Huffman {

/// Writes the low `bytes` (1 to 4) of `value`. @return true on success
inline bool WriteNumber(std::streambuf& target, std::uint32_t value, unsigned bytes = 4) {
    char text[4];
    for (unsigned i = 0; i < 4; ++i)
        text[i] = static_cast<char>(value >> 8 * i);
    return target.sputn(text, bytes) == static_cast<std::streamsize>(bytes);
}

/// @return true when all `bytes` (1 to 4) were there
inline bool ReadNumber(std::streambuf& source, std::uint32_t& value, unsigned bytes = 4) {
    unsigned char text[4] = {};
    if (source.sgetn(reinterpret_cast<char*>(text), bytes) != static_cast<std::streamsize>(bytes)) return false;
    value = text[0] | static_cast<std::uint32_t>(text[1]) << 8 | static_cast<std::uint32_t>(text[2]) << 16 |
            static_cast<std::uint32_t>(text[3]) << 24;
    return true;
}

}  // namespace Huffman

// A stream buffer that codes what passes through it, block by block, each block with a code of its own.
//
// A block, numbers low byte first: u32 length in original bytes; u32 count of symbols; u8 width W of a frequency; for
// each symbol, in order of first appearance, its frequency in W bytes and the symbol; then the codes, filled up to a
// byte.
#pragma once

#include <cstdint>
#include <memory>
#include <streambuf>
#include <string>
#include <vector>

namespace Huffman {

/// What a damaged or hostile stream can't exceed.
struct StreamLimits {
    /// Original bytes, in all blocks together, that may come from blocks of one symbol: their codes have no bits, so
    /// nothing else bounds them. Bytes of other blocks cost a bit each at least.
    std::uint64_t uncodedBytes = 256u << 20;
};

/// Instances: char. What isn't synchronised is lost with the buffer.
/// Thread: one thread at a time.
template <typename C, typename Traits = std::char_traits<C>>
class huffman_streambuf : public std::basic_streambuf<C, Traits> {
public:
    using Target = std::basic_streambuf<C, Traits>;

    /// @param target     not owned
    /// @param blockSize  original bytes of a block; 0 for a buffer that is only read from
    huffman_streambuf(Target* target, std::uint32_t blockSize, StreamLimits limits = {})
        : m_target(target), m_blockSize(blockSize), m_uncodedLeft(limits.uncodedBytes) {}

protected:
    using int_type = typename Traits::int_type;
    int_type overflow(int_type c) override;
    /// The next block's first byte, or the end-of-file value when there is none or it is damaged.
    int_type underflow() override;
    int sync() override;

private:
    bool WriteBlock();
    /// The original bytes into the get buffer. @return how many; 0 at the end or for a damaged block
    std::size_t ReadBlock();

    Target* m_target;
    std::uint32_t m_blockSize;
    std::uint64_t m_uncodedLeft;
    std::unique_ptr<C[]> m_put;
    std::vector<C> m_get;
};

extern template class huffman_streambuf<char>;

}  // namespace Huffman

// The Huffman code of an alphabet. Symbols are numbers here: their places in a dictionary.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <streambuf>
#include <string>
#include <vector>

namespace Huffman {

/// The path from the root to a leaf: a 0 bit for each left child, a 1 bit for each right one, the root's in bit 0.
struct Code {
    std::uint64_t bits = 0;
    std::uint32_t length = 0;
};

/// Bits packed into bytes from the low bit upward.
class BitWriter {
public:
    /// @param code  at most 56 bits
    void Put(const Code& code) {
        m_bits |= code.bits << m_count;
        for (m_count += code.length; m_count >= 8; m_count -= 8) {
            m_bytes += static_cast<char>(m_bits);
            m_bits >>= 8;
        }
    }
    /// The bytes, the last one filled up with 0 bits.
    std::string Finish() &&;

private:
    std::string m_bytes;
    std::uint64_t m_bits = 0;
    unsigned m_count = 0;
};

/// Takes no byte from its stream before a bit of it is needed, so that what follows the bits stays there.
class BitReader {
public:
    explicit BitReader(std::streambuf& source) : m_source(source) {}

private:
    friend class CodeTree;
    bool Fetch() {
        const auto byte = m_source.sbumpc();
        if (byte == std::char_traits<char>::eof()) return false;
        m_bits |= static_cast<std::uint64_t>(byte) << m_count;
        m_count += 8;
        return true;
    }
    void Drop(unsigned count) {
        m_bits >>= count;
        m_count -= count;
    }

    std::streambuf& m_source;
    std::uint64_t m_bits = 0;
    unsigned m_count = 0;
};

/// Built from the frequencies alone, the same way by writer and reader: the two nodes least in frequency, then in
/// order of appearance, are joined until one is left; the joined node has the later order of the two.
class CodeTree {
public:
    static constexpr std::uint32_t none = ~0u;

    explicit CodeTree(std::span<const std::uint32_t> frequencies);

    bool IsEmpty() const { return m_leaves == 0; }
    /// One code a symbol; none when a code would be longer than a `BitWriter` takes, which true counts never give.
    std::optional<std::vector<Code>> Codes() const;
    /// True when a code has no bits at all, as there is but one symbol.
    bool IsFree() const { return m_leaves == 1; }

    /// The next symbol, or `none` when the stream ends within its code. Not for an empty tree.
    std::uint32_t Decode(BitReader& bits) const {
        for (;;) {
            const auto& step = m_steps[bits.m_bits & m_mask];
            if (step.length <= bits.m_count) {
                bits.Drop(step.length);
                return step.node < m_leaves ? step.node : WalkDown(step.node, bits);
            }
            if (!bits.Fetch()) return none;
        }
    }

private:
    struct Inner {
        std::uint32_t child[2];
    };
    /// Where a number of bits leads from the root.
    struct Step {
        std::uint32_t node = 0;
        std::uint32_t length = 0;
    };

    void Build(std::span<const std::uint32_t> frequencies);
    void MakeSteps();
    std::uint32_t WalkDown(std::uint32_t node, BitReader& bits) const;
    std::uint32_t Root() const { return static_cast<std::uint32_t>(m_leaves + m_inner.size() - 1); }

    std::size_t m_leaves;
    std::vector<Inner> m_inner;  // node m_leaves + i; a child comes before its parent
    std::vector<Step> m_steps;
    std::uint64_t m_mask = 0;
};

}  // namespace Huffman

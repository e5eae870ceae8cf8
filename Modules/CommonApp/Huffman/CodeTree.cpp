#include "Huffman/CodeTree.h"

#include <bit>
#include <queue>
#include <tuple>

namespace Huffman {

namespace {

constexpr unsigned mostStepBits = 11;  // 16 KiB of steps: they stay in the nearest cache
constexpr std::uint32_t mostCodeBits = 56;

}  // namespace

std::string BitWriter::Finish() && {
    if (m_count > 0) m_bytes += static_cast<char>(m_bits);
    return std::move(m_bytes);
}

CodeTree::CodeTree(std::span<const std::uint32_t> frequencies) : m_leaves(frequencies.size()) {
    if (m_leaves == 0) return;
    Build(frequencies);
    MakeSteps();
}

void CodeTree::Build(std::span<const std::uint32_t> frequencies) {
    // Frequency, order, node; no two live nodes have the same order.
    using Key = std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>;
    std::vector<Key> leaves;
    leaves.reserve(m_leaves);
    for (std::uint32_t i = 0; i < m_leaves; ++i)
        leaves.emplace_back(frequencies[i], i, i);
    std::priority_queue<Key, std::vector<Key>, std::greater<>> live(std::greater<>(), std::move(leaves));
    m_inner.reserve(m_leaves - 1);
    while (live.size() > 1) {
        const auto [leftFrequency, leftOrder, left] = live.top();
        live.pop();
        const auto [rightFrequency, rightOrder, right] = live.top();
        live.pop();
        m_inner.push_back({{left, right}});
        live.emplace(leftFrequency + rightFrequency, std::max(leftOrder, rightOrder), Root());
    }
}

void CodeTree::MakeSteps() {
    const auto stepBits = std::min(mostStepBits, static_cast<unsigned>(std::bit_width(m_leaves - 1)) + 3);
    const auto bits = IsFree() ? 0u : stepBits;
    m_mask = (1ull << bits) - 1;
    m_steps.resize(m_mask + 1);
    struct Place {
        std::uint32_t node;
        std::uint32_t bits;
        std::uint32_t length;
    };
    std::vector<Place> open{{Root(), 0, 0}};
    while (!open.empty()) {
        const auto [node, code, length] = open.back();
        open.pop_back();
        if (node >= m_leaves && length < bits) {
            const auto& inner = m_inner[node - m_leaves];
            open.push_back({inner.child[0], code, length + 1});
            open.push_back({inner.child[1], code | 1u << length, length + 1});
            continue;
        }
        for (std::size_t at = code; at < m_steps.size(); at += std::size_t{1} << length)
            m_steps[at] = {node, length};
    }
}

std::uint32_t CodeTree::WalkDown(std::uint32_t node, BitReader& bits) const {
    while (node >= m_leaves) {
        if (bits.m_count == 0 && !bits.Fetch()) return none;
        node = m_inner[node - m_leaves].child[bits.m_bits & 1];
        bits.Drop(1);
    }
    return node;
}

std::optional<std::vector<Code>> CodeTree::Codes() const {
    std::vector<Code> codes(m_leaves + m_inner.size());
    for (std::size_t i = m_inner.size(); i-- > 0;) {
        const Code& own = codes[m_leaves + i];
        if (own.length == mostCodeBits) return std::nullopt;
        codes[m_inner[i].child[0]] = {own.bits, own.length + 1};
        codes[m_inner[i].child[1]] = {own.bits | 1ull << own.length, own.length + 1};
    }
    codes.resize(m_leaves);
    return codes;
}

}  // namespace Huffman

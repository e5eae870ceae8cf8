#include "Huffman/StringTable.h"

#include <algorithm>
#include <limits>

#include "Huffman/CodeTree.h"
#include "Huffman/HuffmanStream.h"
#include "Huffman/LittleEndian.h"

namespace {

using Huffman::CodeTree;
using Huffman::huffman_streambuf;
using Huffman::ReadNumber;
using Huffman::WriteNumber;

constexpr Huffman::StreamLimits alphabetLimits{.uncodedBytes = 4u << 20};
constexpr std::uint32_t mostUncodedParts = 4u << 20;  // of a sequence whose one part takes no bits
constexpr std::uint32_t leastBlock = 8;               // room for an alphabet without a part

bool IsAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

template <typename Entries>
std::vector<std::uint32_t> FrequenciesOf(const Entries& entries) {
    std::vector<std::uint32_t> frequencies(entries.size());
    std::transform(entries.begin(), entries.end(), frequencies.begin(), [](const auto& entry) { return entry.second; });
    return frequencies;
}

template <typename Parts>
bool ReadAlphabet(std::streambuf& source, Parts& parts) {
    huffman_streambuf<char> blocks(&source, 0, alphabetLimits);
    std::uint32_t count = 0, width = 0;
    if (!ReadNumber(blocks, count) || !ReadNumber(blocks, width, 1) || width < 1 || width > 4) return false;
    std::string part;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t frequency = 0;
        if (!ReadNumber(blocks, frequency, width) || !parts.ReadSymbol(part, blocks)) return false;
        parts.Add(part, frequency);
    }
    return true;
}

}  // namespace

void BinaryStringTable::AddPart(std::string_view part) {
    m_sequence.push_back(m_parts.Count(part));
    m_totalBytes += part.size() + 1;
}

std::uint32_t BinaryStringTable::Add(std::string_view text) {
    const auto index = static_cast<std::uint32_t>(m_sequence.size());
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at;
        while (end < text.size() && IsAlphanumeric(text[end]))
            ++end;
        if (end == at) ++end;
        AddPart(text.substr(at, end - at));
        at = end;
    }
    AddPart({});
    return index;
}

bool BinaryStringTable::Write(std::streambuf* target) const {
    const auto& entries = m_parts.Entries();
    const auto codes = CodeTree(FrequenciesOf(entries)).Codes();
    if (!codes) return false;
    const auto wanted = std::max<std::uint64_t>(m_totalBytes * 8, leastBlock);
    const auto blockSize = std::min<std::uint64_t>(wanted, std::numeric_limits<std::uint32_t>::max());
    huffman_streambuf<char> blocks(target, static_cast<std::uint32_t>(blockSize));
    const auto width = Huffman::FrequencyWidth(m_parts.MaxFrequency());
    bool good = WriteNumber(blocks, static_cast<std::uint32_t>(entries.size())) && WriteNumber(blocks, width, 1);
    for (const auto& [part, frequency] : entries)
        good = good && WriteNumber(blocks, frequency, width) && m_parts.WriteSymbol(part, blocks);
    if (!good || blocks.pubsync() != 0 || !WriteNumber(*target, static_cast<std::uint32_t>(m_sequence.size())))
        return false;
    Huffman::BitWriter bits;
    for (const auto place : m_sequence)
        bits.Put((*codes)[place]);
    const auto bytes = std::move(bits).Finish();
    const auto size = static_cast<std::streamsize>(bytes.size());
    return target->sputn(bytes.data(), size) == size;
}

bool BinaryStringTable::Read(std::streambuf* source) {
    Parts parts;
    std::uint32_t length = 0;
    if (!ReadAlphabet(*source, parts) || !ReadNumber(*source, length)) return false;
    const CodeTree tree(FrequenciesOf(parts.Entries()));
    if (length > 0 && (tree.IsEmpty() || (tree.IsFree() && length > mostUncodedParts))) return false;
    std::vector<std::uint32_t> sequence;
    std::uint64_t totalBytes = 0;
    Huffman::BitReader bits(*source);
    for (std::uint32_t i = 0; i < length; ++i) {
        const auto place = tree.Decode(bits);
        if (place == CodeTree::none) return false;
        sequence.push_back(place);
        totalBytes += parts.Entries()[place].first.size() + 1;
    }
    m_sequence = std::move(sequence);
    m_parts = std::move(parts);
    m_totalBytes = totalBytes;
    return true;
}

bool BinaryStringTable::GetString(std::uint32_t index, std::string& text, std::uint64_t mostBytes) const {
    text.clear();
    for (std::size_t at = index; at < m_sequence.size(); ++at) {
        const auto& part = m_parts.Entries()[m_sequence[at]].first;
        if (part.empty()) break;
        text += part;
        if (text.size() > mostBytes) return false;
    }
    return true;
}

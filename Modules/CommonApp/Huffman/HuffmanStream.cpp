#include "Huffman/HuffmanStream.h"

#include <algorithm>

#include "Huffman/CodeTree.h"
#include "Huffman/Dictionary.h"
#include "Huffman/LittleEndian.h"

namespace Huffman {

namespace {

using ByteDictionary = dictionary<char, char>;

constexpr std::uint32_t mostSymbols = 256;
constexpr std::size_t growth = 64 * 1024;  // of the get buffer, so that a length alone takes no memory

std::vector<std::uint32_t> FrequenciesOf(const ByteDictionary& symbols) {
    std::vector<std::uint32_t> frequencies;
    for (const auto& entry : symbols.Entries())
        frequencies.push_back(entry.second);
    return frequencies;
}

bool ReadSymbols(std::streambuf& source, ByteDictionary& symbols) {
    std::uint32_t count = 0, width = 0;
    if (!ReadNumber(source, count) || !ReadNumber(source, width, 1)) return false;
    if (count > mostSymbols || width < 1 || width > 4) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t frequency = 0;
        char symbol = 0;
        if (!ReadNumber(source, frequency, width) || !symbols.ReadSymbol(symbol, source)) return false;
        symbols.Add(symbol, frequency);
    }
    return true;
}

}  // namespace

template <typename C, typename Traits>
bool huffman_streambuf<C, Traits>::WriteBlock() {
    const auto* first = this->pbase();
    const auto* last = this->pptr();
    ByteDictionary symbols;
    for (const auto* c = first; c != last; ++c)
        symbols.Count(*c);
    const auto codes = CodeTree(FrequenciesOf(symbols)).Codes();
    if (!codes) return false;

    const auto width = FrequencyWidth(symbols.MaxFrequency());
    bool good = WriteNumber(*m_target, static_cast<std::uint32_t>(last - first)) &&
                WriteNumber(*m_target, static_cast<std::uint32_t>(codes->size())) && WriteNumber(*m_target, width, 1);
    std::array<Code, mostSymbols> codeOf;
    for (std::size_t i = 0; i < codes->size(); ++i) {
        const auto& [symbol, frequency] = symbols.Entries()[i];
        codeOf[static_cast<unsigned char>(symbol)] = (*codes)[i];
        good = good && WriteNumber(*m_target, frequency, width) && symbols.WriteSymbol(symbol, *m_target);
    }
    BitWriter bits;
    for (const auto* c = first; c != last; ++c)
        bits.Put(codeOf[static_cast<unsigned char>(*c)]);
    const auto bytes = std::move(bits).Finish();
    const auto size = static_cast<std::streamsize>(bytes.size());
    return good && m_target->sputn(bytes.data(), size) == size;
}

template <typename C, typename Traits>
typename Traits::int_type huffman_streambuf<C, Traits>::overflow(int_type c) {
    if (m_blockSize == 0) return Traits::eof();
    if (this->pptr() != this->pbase() && !WriteBlock()) return Traits::eof();
    if (!m_put) m_put = std::make_unique_for_overwrite<C[]>(m_blockSize);
    this->setp(m_put.get(), m_put.get() + m_blockSize);
    if (!Traits::eq_int_type(c, Traits::eof())) this->sputc(Traits::to_char_type(c));
    return Traits::not_eof(c);
}

template <typename C, typename Traits>
int huffman_streambuf<C, Traits>::sync() {
    if (this->pptr() != this->pbase()) {
        if (!WriteBlock()) return -1;
        this->setp(m_put.get(), m_put.get() + m_blockSize);
    }
    return m_target->pubsync();
}

template <typename C, typename Traits>
std::size_t huffman_streambuf<C, Traits>::ReadBlock() {
    std::uint32_t length = 0;
    ByteDictionary symbols;
    if (!ReadNumber(*m_target, length) || length == 0 || !ReadSymbols(*m_target, symbols)) return 0;
    const CodeTree tree(FrequenciesOf(symbols));
    if (tree.IsEmpty()) return 0;
    if (tree.IsFree()) {
        if (length > m_uncodedLeft) return 0;
        m_uncodedLeft -= length;
        m_get.assign(std::max<std::size_t>(length, m_get.size()), symbols.Entries()[0].first);
        return length;
    }
    std::array<char, mostSymbols> symbolOf{};
    std::transform(symbols.Entries().begin(), symbols.Entries().end(), symbolOf.begin(),
                   [](const auto& entry) { return entry.first; });
    BitReader bits(*m_target);
    for (std::size_t done = 0; done < length;) {
        const auto until = std::min<std::size_t>(length, done + growth);
        if (m_get.size() < until) m_get.resize(std::min<std::size_t>(length, 2 * until));
        for (; done < until; ++done) {
            const auto symbol = tree.Decode(bits);
            if (symbol == CodeTree::none) return 0;
            m_get[done] = symbolOf[symbol];
        }
    }
    return length;
}

template <typename C, typename Traits>
typename Traits::int_type huffman_streambuf<C, Traits>::underflow() {
    const auto length = ReadBlock();
    if (length == 0) {
        this->setg(nullptr, nullptr, nullptr);
        return Traits::eof();
    }
    this->setg(m_get.data(), m_get.data(), m_get.data() + length);
    return Traits::to_int_type(m_get.front());
}

template class huffman_streambuf<char>;

}  // namespace Huffman

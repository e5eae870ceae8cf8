// The statistics of an alphabet of symbols, and how a symbol stands in a stream.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <streambuf>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Huffman {

/// Where each symbol stands among the entries; for bytes a table, for strings a hash that is asked without a copy.
template <typename T>
class SymbolPlaces;

template <>
class SymbolPlaces<char> {
public:
    /// The place of `symbol`, or null.
    std::uint32_t* Find(char symbol) {
        auto& place = m_places[static_cast<unsigned char>(symbol)];
        return place == none ? nullptr : &place;
    }
    void Set(char symbol, std::uint32_t place) { m_places[static_cast<unsigned char>(symbol)] = place; }
    SymbolPlaces() { m_places.fill(none); }

private:
    static constexpr std::uint32_t none = ~0u;
    std::array<std::uint32_t, 256> m_places;
};

template <>
class SymbolPlaces<std::string> {
public:
    std::uint32_t* Find(std::string_view symbol) {
        const auto found = m_places.find(symbol);
        return found == m_places.end() ? nullptr : &found->second;
    }
    void Set(std::string_view symbol, std::uint32_t place) { m_places.insert_or_assign(std::string(symbol), place); }

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    std::unordered_map<std::string, std::uint32_t, Hash, std::equal_to<>> m_places;
};

/// Bytes that a frequency takes in a stream when `maxFrequency` is the largest one: 1 to 4.
constexpr unsigned FrequencyWidth(std::uint32_t maxFrequency) {
    if (maxFrequency < 0x100) return 1;
    if (maxFrequency < 0x10000) return 2;
    return maxFrequency < 0x1000000 ? 3 : 4;
}

/// Symbols with their frequencies, in order of first appearance.
template <typename T>
class basic_dictionary {
public:
    using Entry = std::pair<T, std::uint32_t>;

    /// Counts one appearance more. @return the place of the symbol's entry
    template <typename Symbol>
    std::uint32_t Count(const Symbol& symbol) {
        auto* place = m_places.Find(symbol);
        if (!place) return Add(symbol, 1);
        auto& frequency = m_entries[*place].second;
        m_maxFrequency = std::max(m_maxFrequency, ++frequency);
        return *place;
    }
    /// Adds an entry as it was stored.
    template <typename Symbol>
    std::uint32_t Add(const Symbol& symbol, std::uint32_t frequency) {
        const auto place = static_cast<std::uint32_t>(m_entries.size());
        m_entries.emplace_back(T(symbol), frequency);
        m_places.Set(symbol, place);
        m_maxFrequency = std::max(m_maxFrequency, frequency);
        return place;
    }
    const std::vector<Entry>& Entries() const { return m_entries; }
    std::uint32_t MaxFrequency() const { return m_maxFrequency; }

    virtual ~basic_dictionary() = default;

private:
    std::vector<Entry> m_entries;
    SymbolPlaces<T> m_places;
    std::uint32_t m_maxFrequency = 0;
};

/// A dictionary whose symbols can be stored.
template <typename T, typename C, typename Traits = std::char_traits<C>>
class advanced_dictionary : public basic_dictionary<T> {
public:
    using Buffer = std::basic_streambuf<C, Traits>;
    /// Each gives true on success.
    virtual bool WriteSymbol(const T& symbol, Buffer& target) const = 0;
    virtual bool ReadSymbol(T& symbol, Buffer& source) const = 0;
};

template <typename T, typename C, typename Traits = std::char_traits<C>>
class dictionary;

/// A symbol is one byte.
template <typename Traits>
class dictionary<char, char, Traits> : public advanced_dictionary<char, char, Traits> {
public:
    using Buffer = std::basic_streambuf<char, Traits>;
    bool WriteSymbol(const char& symbol, Buffer& target) const override {
        return !Traits::eq_int_type(target.sputc(symbol), Traits::eof());
    }
    bool ReadSymbol(char& symbol, Buffer& source) const override {
        const auto read = source.sbumpc();
        symbol = Traits::to_char_type(read);
        return !Traits::eq_int_type(read, Traits::eof());
    }
};

/// A symbol is the bytes of a string and one NUL byte.
template <typename Traits>
class dictionary<std::string, char, Traits> : public advanced_dictionary<std::string, char, Traits> {
public:
    using Buffer = std::basic_streambuf<char, Traits>;
    bool WriteSymbol(const std::string& symbol, Buffer& target) const override {
        const auto size = static_cast<std::streamsize>(symbol.size() + 1);
        return target.sputn(symbol.c_str(), size) == size;
    }
    bool ReadSymbol(std::string& symbol, Buffer& source) const override {
        symbol.clear();
        for (;;) {
            const auto read = source.sbumpc();
            if (Traits::eq_int_type(read, Traits::eof())) return false;
            if (read == 0) return true;
            symbol += Traits::to_char_type(read);
        }
    }
};

}  // namespace Huffman

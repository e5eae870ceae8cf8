#include <gtest/gtest.h>

#include <random>

#include "Huffman/HuffmanStream.h"
#include "Huffman/StringTable.h"
#include "XmlEvents.h"

namespace {

std::string Bytes(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

std::string Coded(const std::string& text, std::uint32_t blockSize) {
    std::stringbuf target;
    Huffman::huffman_streambuf<char> coder(&target, blockSize);
    coder.sputn(text.data(), static_cast<std::streamsize>(text.size()));
    EXPECT_EQ(coder.pubsync(), 0);
    return target.str();
}

std::string Decoded(const std::string& bytes) {
    std::stringbuf source(bytes);
    Huffman::huffman_streambuf<char> decoder(&source, 0);
    std::ostringstream text;
    text << &decoder;
    return text.str();
}

// Worked out by hand. "abracadabra": c and d are joined first, then b and r, then both pairs, then a: a is 0, c 100,
// d 101, b 110, r 111.
const std::string abracadabra =
    Bytes({11, 0, 0, 0, 5, 0, 0, 0, 1, 5, 'a', 2, 'b', 2, 'r', 1, 'c', 1, 'd', 0x76, 0x51, 0x3B});

// <a b="c"/>. The parts "a", "", "c", "b" with 1, 3, 1, 1 appearances: "" is 0, b 10, a 110, c 111. Their alphabet is
// 16 bytes, in which 0 is 0, 1 is 10, 3 is 1100, 'c' 1101, 'b' 1110, 4 is 11110, 'a' 11111. The records are 16 bytes
// too: 0 is 1, 3 is 000, 1 is 001, 2 is 010, 5 is 0110, 4 is 0111.
const std::string document =
    std::string("XB02", 5) +
    Bytes({16, 0, 0, 0, 7, 0, 0, 0, 1, 1, 4, 7, 0, 4, 1, 1, 'a', 1, 3, 1, 'c', 1, 'b', 0x0F, 0xF5, 0x8D, 0x56, 0x07}) +
    Bytes({6, 0, 0, 0, 0x73, 0x01}) +
    Bytes({16, 0, 0, 0, 6, 0, 0, 0, 1, 2, 2, 10, 0, 1, 5, 1, 4, 1, 3, 1, 1, 0x7A, 0xD3, 0xFD, 0x20});

}  // namespace

TEST(Huffman, BlocksAreThoseWorkedOutByHand) {
    EXPECT_EQ(Coded("abracadabra", 100), abracadabra);
    EXPECT_EQ(Coded("abracadabraaa", 11), abracadabra + Bytes({2, 0, 0, 0, 1, 0, 0, 0, 1, 2, 'a'}));
    EXPECT_EQ(Coded("ab", 2), Bytes({2, 0, 0, 0, 2, 0, 0, 0, 1, 1, 'a', 1, 'b', 0x02})) << "the earlier one gets 0";
    EXPECT_EQ(Coded("", 8), "") << "no block of no bytes";
    EXPECT_EQ(Decoded(abracadabra + abracadabra), "abracadabraabracadabra");
}

TEST(Huffman, FrequenciesTakeAsManyBytesAsTheLargest) {
    for (const auto& [count, width] :
         {std::pair(255u, 1), {256u, 2}, {65535u, 2}, {65536u, 3}, {16777215u, 3}, {16777216u, 4}}) {
        const std::string text(count, 'x');
        const auto coded = Coded(text, count);
        EXPECT_EQ(coded.size(), static_cast<std::size_t>(9 + width + 1)) << count;
        EXPECT_EQ(coded[8], width) << count;
        if (count > 65536) continue;  // what remains goes on alike
        EXPECT_TRUE(Decoded(coded) == text) << count;
        EXPECT_TRUE(Decoded(Coded(text + "y", count + 1)) == text + "y") << count;
    }
}

TEST(Huffman, BlocksOfAnyContentComeBack) {
    std::mt19937 random(5);
    for (const std::uint32_t size : {1u, 2u, 255u, 40000u})
        for (const unsigned range : {1u, 2u, 7u, 256u}) {
            std::string text(3 * size + 1, '\0');
            for (char& c : text)
                c = static_cast<char>(random() % (random() % range + 1));
            EXPECT_EQ(Decoded(Coded(text, size)), text) << size << " " << range;
        }
    // Frequencies as the Fibonacci numbers make the longest codes.
    std::string steep;
    for (std::size_t symbol = 0, one = 1, two = 1; symbol < 24; ++symbol, one = std::exchange(two, one + two))
        steep.append(one, static_cast<char>(symbol));
    EXPECT_EQ(Decoded(Coded(steep, 1u << 20)), steep);
}

TEST(Huffman, DamagedBlocksEnd) {
    for (std::size_t length = 0; length < abracadabra.size(); ++length)
        EXPECT_EQ(Decoded(abracadabra.substr(0, length)), "") << length;
    const auto full = [](int count, int width) { return Bytes({-1, -1, -1, -1, count, 0, 0, 0, width}); };
    for (const auto& bad : {full(0, 1), full(1, 0xFF) + "11", full(1, 5) + "11", full(-1, 1) + abracadabra,
                            full(1, 1) + "1a", full(2, 1) + "1a1b" + std::string(100, '\x55')})
        EXPECT_EQ(Decoded(bad), "");
}

TEST(StringTable, CutsStringsIntoPartsAndSharesTheirStatistics) {
    BinaryStringTable table;
    EXPECT_EQ(table.Add("ab-c"), 0u);
    EXPECT_EQ(table.Add(""), 4u);
    EXPECT_EQ(table.Add(" ab"), 5u);
    const std::string many(70000, '#');
    EXPECT_EQ(table.Add(many), 8u);
    std::stringbuf stored;
    EXPECT_TRUE(table.Write(&stored));
    // Behind the alphabet's block header: count 6 of "ab", "-", "c", "", " ", "#"; the width of 70000 is 3.
    const auto alphabet = Decoded(stored.str());
    EXPECT_EQ(alphabet.substr(0, 5), Bytes({6, 0, 0, 0, 3}));
    EXPECT_EQ(alphabet.substr(5, 6), Bytes({2, 0, 0, 'a', 'b', 0}));
    EXPECT_EQ(alphabet.substr(alphabet.size() - 5), Bytes({0x70, 0x11, 0x01, '#', 0}));
    BinaryStringTable read;
    EXPECT_TRUE(read.Read(&stored));
    EXPECT_EQ(stored.sgetc(), EOF);
    std::string text;
    for (const auto& [index, expected] :
         {std::pair(0u, std::string("ab-c")), {1u, "-c"}, {4u, ""}, {5u, " ab"}, {8u, many}, {99999u, ""}}) {
        EXPECT_TRUE(read.GetString(index, text));
        EXPECT_TRUE(text == expected) << index;
    }
    EXPECT_FALSE(read.GetString(8, text, 69999));
}

TEST(BinaryXml, IsThatWorkedOutByHand) {
    EXPECT_EQ(PackedXml("<a b='c'/>"), document);
    EXPECT_EQ(XmlEvents::OfBinary(document + "what follows is not read"), "{<a b=c >}");
    EXPECT_EQ(PackedXml(""), std::string("XB02", 5) + Bytes({5, 0, 0, 0, 2, 0, 0, 0, 1, 4, 0, 1, 1, 0x0F, 0,
                                                             0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1}));
}

TEST(BinaryXml, OfAnAbortedDocumentHasNoMoreThanItsMagic) {
    std::stringbuf target;
    XML::BinaryParser writer(&target);
    writer.BeginDocument();
    writer.OpenTag("a");
    EXPECT_TRUE(writer.IsGood());
    writer.Abort();
    writer.EndDocument();
    EXPECT_FALSE(writer.IsGood());
    EXPECT_EQ(target.str(), std::string("XB02", 5));
}

TEST(BinaryXml, ComesBackAsItWas) {
    for (const char* text : {"<a/>", "<p x=''><b>one two</b>t<b y='ab-c'/>&#228;</p><q/>", ""})
        EXPECT_EQ(XmlEvents::OfBinary(PackedXml(text)), XmlEvents::OfText(text)) << text;
    std::string large = "<p>";
    for (int i = 0; i < 20000; ++i)
        large += "<f name='field" + std::to_string(i * 7919 % 1000) + "' at='0x" + std::to_string(i) + "'>note</f>";
    EXPECT_TRUE(XmlEvents::OfBinary(PackedXml(large + "</p>")) == XmlEvents::OfText(large + "</p>"));
}

TEST(BinaryXml, DamagedEndsInTime) {
    const auto packed = PackedXml("<p id='x'><c name='one' v='1'>text of it</c><c name='two'/></p>");
    for (std::size_t length = 0; length < packed.size(); ++length) {
        const auto events = XmlEvents::OfBinary(packed.substr(0, length));
        EXPECT_TRUE(length < 5 ? events.empty() : events == "fail" || events.ends_with("!fail")) << length;
    }
    for (const auto& head : {std::string("XB02\1", 5), std::string("XB03", 5)})
        EXPECT_EQ(XmlEvents::OfBinary(head + packed.substr(5)), "fail");
    std::mt19937 random(7);
    for (std::size_t round = 0; round < 8 * packed.size() + 4000; ++round) {
        auto damaged = packed;
        if (round < 8 * packed.size())
            damaged[round / 8] ^= static_cast<char>(1 << round % 8);
        else
            for (int i = 0; i < 4; ++i)
                damaged[5 + random() % (damaged.size() - 5)] = static_cast<char>(random());
        const auto events = XmlEvents::OfBinary(damaged);
        EXPECT_TRUE(events.ends_with("fail") || events.ends_with("}")) << round;
    }
}

TEST(BinaryXml, SmallFilesMakeNoLargeMemory) {
    // One symbol codes in no bits: a block of a few bytes stands for 4 billion.
    const auto free = [](int symbol) { return Bytes({-1, -1, -1, -1, 1, 0, 0, 0, 4, -1, -1, -1, -1, symbol}); };
    const auto table = document.substr(0, 5 + 34);
    for (const int type : {1, 2, 3, 4, 5})
        EXPECT_EQ(XmlEvents::OfBinary(table + free(type)), "{!fail") << type;
    EXPECT_EQ(XmlEvents::OfBinary(document.substr(0, 5) + free(1)), "fail");
    // A close tag without its element, a type that isn't one, no end.
    for (const auto& records : {"\3\1", "\1\6", "\2"})
        EXPECT_TRUE(XmlEvents::OfBinary(table + Coded(std::string(records), 9)).starts_with("{")) << records;
    EXPECT_EQ(XmlEvents::OfBinary(table + Coded("\3\1", 9)), "{!fail");
    // Text of 64 KiB, asked for again and again.
    const std::string word(65536, 'w');
    auto packed = PackedXml("<" + word + "/>");
    packed.resize(packed.size() - Coded(std::string("\2\0\0\0\0\3\1", 7), 9).size());
    std::string records;
    for (int i = 0; i < 2000; ++i)
        records += std::string("\4\0\0\0\0", 5);
    EXPECT_TRUE(XmlEvents::OfBinary(packed + Coded(records + "\1", 1u << 20)).ends_with("!fail"));
}

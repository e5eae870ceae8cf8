// XML text, its binary form and the Huffman blocks under it, against expat where there is a peer: megabytes a second,
// and the ratio of the two parsers measured in turn.
#include <benchmark/benchmark.h>

#if TARN_HAVE_EXPAT
#include <expat.h>
#endif

#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

#include "BenchSupport.h"
#include "Huffman/HuffmanStream.h"
#include "Xml/Base.h"
#include "Xml/BinaryParser.h"
#include "Xml/Parser.h"

namespace {

/// What a document holds, counted by either parser.
struct Counts {
    std::uint64_t tags = 0, attributes = 0, textBytes = 0;
    bool operator==(const Counts&) const = default;
};

struct Counting : XML::IListener {
    void BeginDocument() override {}
    void EndDocument() override {}
    void Abort() override {}
    void OpenTag(const char*) override { ++counts.tags; }
    void CloseTag() override {}
    void Attribute(const char*, const char* value) override {
        ++counts.attributes;
        counts.textBytes += std::strlen(value);
    }
    void Text(const char* text) override { counts.textBytes += std::strlen(text); }
    Counts counts;
};

/// A profile of memory fields, as long as wanted.
std::string Document(std::size_t bytes) {
    std::string text = "<?xml version=\"1.0\" ?>\n<Profile Product=\"bench\">";
    for (unsigned i = 0; text.size() < bytes; ++i) {
        const auto number = std::to_string(i);
        text += "<Section Name=\"Section" + std::to_string(i % 97) + "\" SectionID=\"" + number +
                "\"><Field Name=\"RxAntennaMask\" Category=\"SKU\" StartBit=\"" + std::to_string(i % 8) +
                "\" ByteOffset=\"0x" + number + "\" PreservedField=\"None\"/><Note>field " + number +
                " of the board, kept &amp; read as it stands</Note></Section>";
    }
    return text + "</Profile>";
}

/// Reads from memory without a copy.
struct MemoryBuffer : std::streambuf {
    explicit MemoryBuffer(const std::string& text) {
        auto* first = const_cast<char*>(text.data());
        setg(first, first, first + text.size());
    }
};

Counts OursOf(const std::string& text) {
    MemoryBuffer buffer(text);
    std::istream stream(&buffer);
    Counting counting;
    return XML::Parser(&counting).Parse(stream) ? counting.counts : Counts{};
}

#if TARN_HAVE_EXPAT
Counts ExpatOf(const std::string& text) {
    Counts counts;
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &counts);
    XML_SetStartElementHandler(parser, [](void* user, const char*, const char** attributes) {
        auto& seen = *static_cast<Counts*>(user);
        ++seen.tags;
        for (; *attributes; attributes += 2) {
            ++seen.attributes;
            seen.textBytes += std::strlen(attributes[1]);
        }
    });
    XML_SetCharacterDataHandler(parser, [](void* user, const char*, int length) {
        static_cast<Counts*>(user)->textBytes += static_cast<std::uint64_t>(length);
    });
    MemoryBuffer buffer(text);
    constexpr int piece = 256 * 1024;
    bool good = true;
    for (bool isLast = false; good && !isLast;) {
        const auto got = static_cast<int>(buffer.sgetn(static_cast<char*>(XML_GetBuffer(parser, piece)), piece));
        isLast = got < piece;
        good = XML_ParseBuffer(parser, got, isLast) == XML_STATUS_OK;
    }
    XML_ParserFree(parser);
    return good ? counts : Counts{};
}
#endif

std::string Packed(const XML::Base& tree) {
    std::stringbuf target;
    XML::BinaryParser writer(&target);
    tree.Replay(writer);
    return target.str();
}

bool Unpack(const std::string& packed, XML::Base& tree) {
    MemoryBuffer buffer(packed);
    std::istream stream(&buffer);
    XML::BinaryParser().Parse(stream, tree.GetListener());
    return stream.good() && tree.GetRoot();
}

std::string Coded(const std::string& text) {
    std::stringbuf target;
    Huffman::huffman_streambuf<char> coder(&target, 32768);
    coder.sputn(text.data(), static_cast<std::streamsize>(text.size()));
    coder.pubsync();
    return target.str();
}

std::size_t Decoded(const std::string& coded, std::string& text) {
    MemoryBuffer buffer(coded);
    Huffman::huffman_streambuf<char> decoder(&buffer, 0);
    return static_cast<std::size_t>(decoder.sgetn(text.data(), static_cast<std::streamsize>(text.size())));
}

template <typename Work>
void Throughput(benchmark::State& state, std::size_t bytes, Work work) {
    for (auto iteration : state)
        benchmark::DoNotOptimize(work());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

}  // namespace

int main(int argc, char** argv) {
    if (!Bench::start(argc, argv, "none")) return 1;
    const std::string large = Document(50u << 20), profile = Document(10u << 20);
    XML::Base tree, again;
    std::istringstream stream(profile);
    tree.Load(stream, true);
    const auto packed = Packed(tree), coded = Coded(profile);
    std::string text(profile.size(), '\0');
    if (!Unpack(packed, again) || Packed(again) != packed || Decoded(coded, text) != text.size() || text != profile ||
        OursOf(large) == Counts{}) {
        std::fprintf(stderr, "Xml: what is read back isn't what was written\n");
        return 1;
    }
    benchmark::RegisterBenchmark("text of 50 MB", [&](benchmark::State& state) {
        Throughput(state, large.size(), [&] { return OursOf(large).tags; });
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("binary form of 10 MB written", [&](benchmark::State& state) {
        Throughput(state, profile.size(), [&] { return Packed(tree).size(); });
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("binary form of 10 MB read", [&](benchmark::State& state) {
        Throughput(state, profile.size(), [&] { return Unpack(packed, again); });
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Huffman blocks coded", [&](benchmark::State& state) {
        Throughput(state, profile.size(), [&] { return Coded(profile).size(); });
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Huffman blocks decoded", [&](benchmark::State& state) {
        Throughput(state, profile.size(), [&] { return Decoded(coded, text); });
    })->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
#if TARN_HAVE_EXPAT
    if (OursOf(large) != ExpatOf(large)) {
        std::fprintf(stderr, "Xml: the two parsers count differently\n");
        return 1;
    }
    const auto ratio = Bench::measureRatio([&] { OursOf(large); }, [&] { ExpatOf(large); }, 11);
    Bench::printRatio("text of 50 MB", ratio, "expat");
#endif
    return 0;
}

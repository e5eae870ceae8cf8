// Huffman blocks and string tables: any input ends; what was coded comes back.
// links: CommonApp
#include <sstream>
#include <string>

#include "Fuzz.h"
#include "Huffman/HuffmanStream.h"
#include "Huffman/StringTable.h"

namespace {

std::string Decoded(const std::string& bytes) {
    std::stringbuf source(bytes);
    Huffman::huffman_streambuf<char> decoder(&source, 0, {.uncodedBytes = 1u << 20});
    std::ostringstream text;
    text << &decoder;
    return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(fuzz::TextOf(data, size));
    Decoded(bytes);
    BinaryStringTable table, again;
    std::stringbuf source(bytes);
    std::string text;
    if (table.Read(&source)) table.GetString(size > 0 ? data[0] : 0u, text, 1u << 20);

    std::stringbuf coded;
    Huffman::huffman_streambuf<char> coder(&coded, size > 0 ? data[0] + 1u : 1u);
    coder.sputn(bytes.data(), static_cast<std::streamsize>(size));
    fuzz::Expect(coder.pubsync() == 0 && Decoded(coded.str()) == bytes, "blocks come back");

    const std::string line = bytes.c_str();  // strings of a document hold no NUL byte
    BinaryStringTable written;
    const auto first = written.Add(line), second = written.Add(line);
    std::stringbuf stored;
    fuzz::Expect(written.Write(&stored) && again.Read(&stored), "a table comes back");
    for (const auto index : {first, second})
        fuzz::Expect(again.GetString(index, text) && text == line, "strings come back");
    return 0;
}

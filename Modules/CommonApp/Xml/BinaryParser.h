// The binary form of XML: read into events, and written from them.
//
// The magic "XB02" and a byte 0; the table of strings; records in Huffman blocks. A record is a type byte and its
// strings, each as a u32 place in the table, low byte first: 1 end of document; 2 open tag, with its name; 3 close tag;
// 4 text, with it; 5 attribute, with value and name.
#pragma once

#include <iosfwd>
#include <memory>
#include <streambuf>

#include "Xml/Listener.h"

namespace XML {

/// Thread: one thread at a time.
class BinaryParser : public virtual IListener {
public:
    /// Text that one document may hand on beyond the size of its table: places may be used more than once, so a small
    /// file could make any amount of text.
    static constexpr std::uint64_t mostRepeatedText = 64u << 20;

    /// A reader.
    BinaryParser();
    /// A writer of one document. @param target  not owned; gets the magic now, all else at the document's end
    explicit BinaryParser(std::streambuf* target);
    ~BinaryParser() override;

    /// Reads one document. A stream shorter than the magic leaves listener and stream state alone; any other fault sets
    /// the fail bit, after `Abort` when the document had begun.
    void Parse(std::istream& stream, IListener& listener);

    /// False when the target refused something, or a document was aborted.
    bool IsGood() const { return m_isGood; }

    void BeginDocument() override;
    void EndDocument() override;
    void Abort() override;
    void OpenTag(const char* name) override;
    void CloseTag() override;
    void Attribute(const char* name, const char* value) override;
    void Text(const char* text) override;

private:
    struct Document;

    std::streambuf* m_target = nullptr;
    std::unique_ptr<Document> m_document;  // while one is being written
    bool m_isGood = true;
};

}  // namespace XML

#include "Xml/BinaryParser.h"

#include <cstring>
#include <istream>
#include <sstream>

#include "Huffman/HuffmanStream.h"
#include "Huffman/LittleEndian.h"
#include "Huffman/StringTable.h"

namespace XML {

namespace {

using Huffman::ReadNumber;
using Huffman::WriteNumber;

constexpr char magic[] = "XB02";  // with its closing byte
constexpr std::uint32_t blockSize = 32768;
constexpr Huffman::StreamLimits recordLimits{.uncodedBytes = 4u << 20};

enum class Record : unsigned char { EndDocument = 1, OpenTag, CloseTag, Text, Attribute };

/// The records of one document, handed on to a listener.
class RecordReader {
public:
    RecordReader(std::streambuf& source, const BinaryStringTable& strings, IListener& listener)
        : m_records(&source, 0, recordLimits),
          m_strings(strings),
          m_listener(listener),
          m_textLeft(BinaryParser::mostRepeatedText + strings.GetTotalBytes()) {}

    /// @return whether the document came to its end
    bool ReadAll() {
        for (;;) {
            const auto type = m_records.sbumpc();
            if (type == static_cast<int>(Record::EndDocument)) return true;
            if (!ReadOne(type)) return false;
        }
    }

private:
    bool ReadOne(int type) {
        switch (type) {
            case static_cast<int>(Record::OpenTag):
                if (!ReadString(m_name)) return false;
                ++m_depth;
                m_listener.OpenTag(m_name.c_str());
                return true;
            case static_cast<int>(Record::CloseTag):
                if (m_depth == 0) return false;
                --m_depth;
                m_listener.CloseTag();
                return true;
            case static_cast<int>(Record::Text):
                if (!ReadString(m_value)) return false;
                m_listener.Text(m_value.c_str());
                return true;
            case static_cast<int>(Record::Attribute):
                if (!ReadString(m_value) || !ReadString(m_name)) return false;
                m_listener.Attribute(m_name.c_str(), m_value.c_str());
                return true;
            default:
                return false;
        }
    }

    bool ReadString(std::string& text) {
        std::uint32_t index = 0;
        if (!ReadNumber(m_records, index) || !m_strings.GetString(index, text, m_textLeft)) return false;
        m_textLeft -= text.size();
        return true;
    }

    Huffman::huffman_streambuf<char> m_records;
    const BinaryStringTable& m_strings;
    IListener& m_listener;
    std::uint64_t m_textLeft;
    std::size_t m_depth = 0;
    std::string m_name;
    std::string m_value;
};

}  // namespace

struct BinaryParser::Document {
    std::stringbuf coded{std::ios_base::in | std::ios_base::out};
    Huffman::huffman_streambuf<char> records{&coded, blockSize};
    BinaryStringTable strings;

    void Write(Record type) { records.sputc(static_cast<char>(type)); }
    void Write(const char* text) { WriteNumber(records, strings.Add(text)); }
};

BinaryParser::BinaryParser() = default;

BinaryParser::BinaryParser(std::streambuf* target) : m_target(target) {
    m_isGood = target->sputn(magic, sizeof magic) == sizeof magic;
}

BinaryParser::~BinaryParser() = default;

void BinaryParser::Parse(std::istream& stream, IListener& listener) {
    auto* source = stream.rdbuf();
    if (!source) return;
    source->pubsync();
    char head[sizeof magic] = {};
    if (source->sgetn(head, sizeof head) < static_cast<std::streamsize>(sizeof head)) return;
    BinaryStringTable strings;
    if (std::memcmp(head, magic, sizeof magic) != 0 || !strings.Read(source)) {
        stream.setstate(std::ios_base::failbit);
        return;
    }
    listener.BeginDocument();
    if (RecordReader(*source, strings, listener).ReadAll()) {
        listener.EndDocument();
        return;
    }
    listener.Abort();
    stream.setstate(std::ios_base::failbit);
}

void BinaryParser::BeginDocument() {
    m_document = m_target ? std::make_unique<Document>() : nullptr;
}

void BinaryParser::EndDocument() {
    if (!m_document) return;
    m_document->Write(Record::EndDocument);
    bool good = m_document->records.pubsync() == 0 && m_document->strings.Write(m_target);
    const auto coded = m_document->coded.view();
    const auto size = static_cast<std::streamsize>(coded.size());
    good = good && m_target->sputn(coded.data(), size) == size;
    m_isGood = m_target->pubsync() == 0 && good && m_isGood;
    m_document.reset();
}

void BinaryParser::Abort() {
    m_document.reset();
    m_isGood = false;
}

void BinaryParser::OpenTag(const char* name) {
    if (!m_document) return;
    m_document->Write(Record::OpenTag);
    m_document->Write(name);
}

void BinaryParser::CloseTag() {
    if (m_document) m_document->Write(Record::CloseTag);
}

void BinaryParser::Attribute(const char* name, const char* value) {
    if (!m_document) return;
    m_document->Write(Record::Attribute);
    m_document->Write(value);
    m_document->Write(name);
}

void BinaryParser::Text(const char* text) {
    if (!m_document) return;
    m_document->Write(Record::Text);
    m_document->Write(text);
}

}  // namespace XML

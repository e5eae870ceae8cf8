#include "Packing.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

#include "Exceptions.h"
#include "Format.h"
#include "OSAL/Paths.h"
#include "OSAL/WholeFile.h"
#include "Xml/BinaryParser.h"
#include "Xml/Parser.h"
#include "Xml/Writer.h"

namespace TarnFormat {

namespace {

/// A small binary file can describe any amount of indentation.
constexpr std::size_t mostBytes = std::size_t{1} << 30;

[[noreturn]] void Throw(const char* text, const std::string& path) {
    throw new Common::Exception(Common::Format(text) % OSAL::FileNameOf(path));
}

std::ifstream OpenSource(const std::string& path) {
    std::ifstream file(path, std::ios_base::binary);
    if (!file) Throw("File ${1} can't be read", path);
    return file;
}

/// A file that takes its place when all that was written is on the disk.
class Target : std::streambuf {
public:
    explicit Target(const std::string& path) : m_path(path), m_file(OSAL::WholeFile::Begin(path)), m_piece(256 * 1024) {
        if (!m_file) Fail(m_file.Reason());
        setp(m_piece.data(), m_piece.data() + m_piece.size());
    }
    std::streambuf* Buffer() { return this; }
    bool IsEmpty() const { return m_written == 0 && pptr() == pbase(); }
    void CheckWritten() {
        if (!m_failure.empty()) Fail(m_failure);
    }
    void Commit() {
        sync();
        CheckWritten();
        if (const auto committed = m_file->Commit(); !committed) Fail(committed.Reason());
    }

protected:
    int_type overflow(int_type c) override {
        if (sync() != 0) return traits_type::eof();
        if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
        return traits_type::not_eof(c);
    }
    int sync() override {
        const std::string_view piece(pbase(), static_cast<std::size_t>(pptr() - pbase()));
        m_written += piece.size();
        setp(m_piece.data(), m_piece.data() + m_piece.size());
        if (m_written > mostBytes) return Note("can't write '" + m_path + "': it would be longer than 1 GiB");
        const auto written = m_file->Write(piece);
        return written ? 0 : Note(written.Reason());
    }

private:
    [[noreturn]] static void Fail(const std::string& reason) { throw new Common::Exception(reason); }
    int Note(std::string failure) {
        if (m_failure.empty()) m_failure = std::move(failure);
        return -1;
    }

    std::string m_path;
    OSAL::Outcome<OSAL::WholeFile> m_file;
    std::vector<char> m_piece;
    std::size_t m_written = 0;
    std::string m_failure;  // the first one
};

}  // namespace

void Pack(const std::string& source, const std::string& target) {
    auto file = OpenSource(source);
    std::stringbuf packed;
    XML::BinaryParser writer(&packed);
    if (!XML::Parser(&writer).Parse(file)) Throw("File ${1} isn't a whole XML document", source);
    Target result(target);
    const auto bytes = packed.view();
    result.Buffer()->sputn(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    result.Commit();
}

void Unpack(const std::string& source, const std::string& target) {
    auto file = OpenSource(source);
    Target result(target);
    std::ostream text(result.Buffer());
    XML::Writer writer(text, {.escaping = XML::WriterStyle::Escaping::Markup});
    XML::BinaryParser().Parse(file, writer);
    if (!file || result.IsEmpty()) Throw("File ${1} isn't a whole binary XML document", source);
    result.CheckWritten();
    if (!text) Throw("File ${1} holds elements that are too deep to be indented", source);
    result.Commit();
}

}  // namespace TarnFormat

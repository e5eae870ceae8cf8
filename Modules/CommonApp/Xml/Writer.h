// XML text from events.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Xml/Listener.h"

namespace XML {

/// How a document looks.
struct WriterStyle {
    enum class Layout {
        Indented,  ///< the declaration first, then each element on a line of its own behind a tab for each level
        OneLine,   ///< the elements alone, without white space between them
    };
    enum class Escaping {
        None,    ///< texts and values as they are given: what the parser takes for markup doesn't come back
        Markup,  ///< its characters, and white space that the parser would cut, by their codes
    };
    Layout layout = Layout::Indented;
    Escaping escaping = Escaping::None;
    char quote = '"';
};

/// A failure shows in the stream's state.
/// Thread: one thread at a time.
class Writer : public IListener {
public:
    /// Deeper documents, whose indentation alone would fill a disk, set the stream's bad bit.
    static constexpr std::size_t mostIndentedLevels = 10000;

    /// @param stream  not owned; outlives the writer
    explicit Writer(std::ostream& stream, WriterStyle style = {}) : m_stream(stream), m_style(style) {}

    void BeginDocument() override;
    void EndDocument() override {}
    void Abort() override;
    void OpenTag(const char* name) override;
    void CloseTag() override;
    void Attribute(const char* name, const char* value) override;
    void Text(const char* text) override;

private:
    struct Element {
        std::string name;
        bool hasContent = false;  // the ">" of its start tag is written
    };

    bool IsIndented() const { return m_style.layout == WriterStyle::Layout::Indented; }
    void CloseStartTag();
    void NewLine(std::size_t tabs);
    void WriteText(std::string_view text);

    std::ostream& m_stream;
    WriterStyle m_style;
    std::vector<Element> m_open;  // innermost last
};

}  // namespace XML

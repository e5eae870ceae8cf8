#include "Xml/Writer.h"

#include <ostream>

namespace XML {

void Writer::BeginDocument() {
    m_open.clear();
    if (IsIndented()) m_stream << "<?xml version=\"1.0\" ?>\n";
}

void Writer::Abort() {
    m_open.clear();
    m_stream.setstate(std::ios_base::badbit);
}

void Writer::CloseStartTag() {
    if (m_open.empty() || m_open.back().hasContent) return;
    m_open.back().hasContent = true;
    m_stream << '>';
}

void Writer::NewLine(std::size_t tabs) {
    if (!IsIndented() || !m_stream) return;
    m_stream << '\n' << std::string(tabs, '\t');
}

void Writer::OpenTag(const char* name) {
    if (!m_open.empty() && !m_open.back().hasContent) {
        CloseStartTag();
        NewLine(m_open.size() - 1);
    }
    if (IsIndented() && !m_open.empty()) m_stream << '\t';
    m_stream << '<' << name;
    m_open.push_back({name});
    if (IsIndented() && m_open.size() > mostIndentedLevels) m_stream.setstate(std::ios_base::badbit);
}

void Writer::CloseTag() {
    if (m_open.empty()) return;
    if (m_open.back().hasContent)
        m_stream << "</" << m_open.back().name << '>';
    else
        m_stream << "/>";
    m_open.pop_back();
    NewLine(m_open.empty() ? 0 : m_open.size() - 1);
}

void Writer::WriteText(std::string_view text) {
    if (m_style.escaping == WriterStyle::Escaping::None) {
        m_stream << text;
        return;
    }
    constexpr std::string_view white = "\n\r\t ", markup = "&<>\"'";
    const auto first = text.find_first_not_of(white), last = text.find_last_not_of(white);
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isCut = first == std::string_view::npos || at < first || at > last;
        if (isCut || markup.find(text[at]) != std::string_view::npos)
            m_stream << "&#" << static_cast<unsigned>(text[at]) << ';';
        else
            m_stream << text[at];
    }
}

void Writer::Attribute(const char* name, const char* value) {
    m_stream << ' ' << name << '=' << m_style.quote;
    WriteText(value);
    m_stream << m_style.quote;
}

void Writer::Text(const char* text) {
    CloseStartTag();
    WriteText(text);
}

}  // namespace XML

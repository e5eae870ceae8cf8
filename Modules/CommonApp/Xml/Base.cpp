#include "Xml/Base.h"

#include <istream>

#include "Xml/Parser.h"
#include "Xml/Walk.h"
#include "Xml/Writer.h"

namespace XML {

std::istream& Base::Load(std::istream& stream, bool replaceRoot) {
    m_replaceRoot = replaceRoot;
    if (!Parser(this).Parse(stream)) Abort();
    return stream;
}

IListener& Base::GetListener() {
    m_replaceRoot = true;
    return *this;
}

void Base::Replay(IListener& listener) const {
    listener.BeginDocument();
    const auto enter = [&listener](const std::string& name, const CountedPtr<Node>& node) {
        listener.OpenTag(name.c_str());
        for (const auto& [attribute, value] : node->GetAttributes())
            listener.Attribute(attribute.c_str(), value.c_str());
        if (!node->Text().empty()) listener.Text(node->Text().c_str());
    };
    if (m_root) Walk(*m_root, enter, [&listener](const Node&) { listener.CloseTag(); });
    listener.EndDocument();
}

void Base::Save(std::ostream& stream) const {
    Writer writer(stream);
    Replay(writer);
}

void Base::BeginDocument() {
    m_open.clear();
    if (m_replaceRoot || !m_root) m_root = MakeCounted<Node>();
    m_open.push_back(m_root);
}

void Base::Abort() {
    m_open.clear();
    m_root = nullptr;
}

void Base::OpenTag(const char* name) {
    if (m_open.empty()) return;
    if (m_open.size() == 1) {
        const auto same = m_root->GetChildren().lower_bound(name);
        if (same != m_root->GetChildren().end() && same->first == name) {
            m_open.push_back(same->second);
            return;
        }
    }
    m_open.push_back(m_open.back()->AddChild(name));
}

void Base::CloseTag() {
    if (m_open.size() > 1) m_open.pop_back();
}

void Base::Attribute(const char* name, const char* value) {
    if (!m_open.empty()) m_open.back()->Set(name, value);
}

void Base::Text(const char* text) {
    if (!m_open.empty()) m_open.back()->AppendText(text);
}

}  // namespace XML

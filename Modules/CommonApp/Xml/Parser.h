// XML text to events: elements, attributes, character data; comments, declarations and processing instructions are
// skipped, and there are no name spaces.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Xml/Listener.h"

namespace XML {

/// Reads a document of any size and depth in one pass, in memory for its longest name, value or text.
/// Thread: one thread at a time.
class Parser {
public:
    /// Longest element name, attribute or text, as it stands in the file; a longer one fails.
    static constexpr std::size_t mostTokenBytes = 256u << 20;

    /// @param listener  not owned
    explicit Parser(IListener* listener) : m_listener(listener) {}

    /// Reads up to the end of the stream or the first fault. A fault sets the fail bit; a stream that breaks gets its
    /// bad bit, and the listener's `Abort` is called.
    /// @return whether the document was good to its end, so that the listener's `EndDocument` was called
    bool Parse(std::istream& stream);

private:
    class Input;

    bool ParseBody(Input& input);
    bool ParseText(Input& input);
    bool ParseTag(Input& input);
    bool ParseDeclaration(Input& input);
    bool ParseEndTag(Input& input);
    bool ParseStartTag(Input& input);
    bool ParseAttributes(Input& input);
    bool ParseAttribute(Input& input);
    bool PopName();
    std::string_view OpenName() const;

    IListener* m_listener;
    std::string m_names;              // of all open elements, one behind the other
    std::vector<std::size_t> m_open;  // where each of them begins, innermost last
    std::string m_decoded;
};

/// Decodes in place, each kind throughout before the next: &quot; &lt; &gt; &nl; &amp;, then the characters given by
/// their codes, &#65; and &#x41;, of which the low 8 bits count.
void DecodeEntities(std::string& text);

}  // namespace XML

// An element of an XML tree: a named store of attributes with children and a text.
#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

#include "CountedPtr.h"
#include "NamedStorage.h"

namespace XML {

/// Its attributes are its named variables, so that $(...) references in them can be expanded. Nothing here recurses:
/// a tree may be as deep as memory allows.
/// Thread: one thread at a time.
class Node : public NamedStorage {
public:
    /// Children of one name keep the order in which they were added.
    using Children = std::multimap<std::string, CountedPtr<Node>>;

    Node() = default;
    ~Node() override;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    const std::string* Get(const std::string& name) const override;
    void Set(const std::string& name, const std::string& value) override;
    void CopyTo(NamedStorage& target) const override;

    /// A new, empty child.
    CountedPtr<Node> AddChild(const std::string& name);
    /// The node reached by names with "\" or "/" between them, the first child of each name; null when one is missing.
    const Node* FindChild(std::string_view path) const;
    Node* FindChild(std::string_view path);

    enum class Search { Children, Descendants };
    /// Nodes by their path.
    /// @param path  with Search::Children, a path as of `FindChild`, whose last name may stand for several nodes; with
    ///              Search::Descendants, a pattern of `CmdLine::WildcardMatch` for paths such as "./a/b"
    Children FindAll(std::string_view path, Search search = Search::Children) const;
    /// The first descendant, by its path, whose attribute has that value; null when there is none.
    const Node* FindAttribute(std::string_view pattern, const std::string& attribute, const std::string& value) const;

    const std::string& Text() const { return m_text; }
    void AppendText(std::string_view text) { m_text += text; }
    const std::map<std::string, std::string>& GetAttributes() const { return m_attributes; }
    const Children& GetChildren() const { return m_children; }

    // The stream form, numbers low byte first: u32 count of attributes; of each the name and the value, each with a NUL
    // byte behind it; u32 count of children; of each the name with a NUL byte, then the child in the same form. The
    // text is no part of it.

    /// A failure sets the stream's bad bit.
    void SaveTo(std::ostream& stream) const;
    /// Adds what the stream holds. A stream that ends too early gets its fail bit set.
    void LoadFrom(std::istream& stream);

private:
    void AddDescendants(std::string_view pattern, Children& found) const;

    Children m_children;
    std::map<std::string, std::string> m_attributes;
    std::string m_text;
};

}  // namespace XML

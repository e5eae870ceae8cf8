#include "Xml/Node.h"

#include <istream>
#include <ostream>
#include <vector>

#include "CmdLine/CmdLine.h"
#include "Huffman/LittleEndian.h"
#include "Xml/Walk.h"

namespace XML {

namespace {

constexpr std::string_view separators = "\\/";

bool ReadName(std::streambuf& source, std::string& name) {
    name.clear();
    for (;;) {
        const auto read = source.sbumpc();
        if (read == std::char_traits<char>::eof()) return false;
        if (read == 0) return true;
        name += static_cast<char>(read);
    }
}

bool WriteName(std::streambuf& target, const std::string& name) {
    const auto size = static_cast<std::streamsize>(name.size() + 1);
    return target.sputn(name.c_str(), size) == size;
}

bool WriteHead(std::streambuf& target, const Node& node) {
    bool good = Huffman::WriteNumber(target, static_cast<std::uint32_t>(node.GetAttributes().size()));
    for (const auto& [name, value] : node.GetAttributes())
        good = good && WriteName(target, name) && WriteName(target, value);
    return good && Huffman::WriteNumber(target, static_cast<std::uint32_t>(node.GetChildren().size()));
}

/// @param children  how many of them follow
bool ReadHead(std::streambuf& source, Node& node, std::uint32_t& children) {
    std::uint32_t attributes = 0;
    std::string name, value;
    if (!Huffman::ReadNumber(source, attributes)) return false;
    for (; attributes > 0; --attributes) {
        if (!ReadName(source, name) || !ReadName(source, value)) return false;
        node.Set(name, value);
    }
    return Huffman::ReadNumber(source, children);
}

}  // namespace

Node::~Node() {
    // The last holder of a deep tree would else end it by a call for each level.
    std::vector<CountedPtr<Node>> ending;
    const auto take = [&ending](Node& node) {
        for (auto& [name, child] : node.m_children)
            ending.push_back(std::move(child));
        node.m_children.clear();
    };
    take(*this);
    while (!ending.empty()) {
        const auto node = std::move(ending.back());
        ending.pop_back();
        if (node.GetCount() == 1) take(*node);
    }
}

const std::string* Node::Get(const std::string& name) const {
    const auto found = m_attributes.find(name);
    return found == m_attributes.end() ? NamedStorage::Get(name) : &found->second;
}

void Node::Set(const std::string& name, const std::string& value) {
    m_attributes[name] = value;
}

void Node::CopyTo(NamedStorage& target) const {
    for (const auto& [name, value] : m_attributes)
        target.Set(name, value);
}

CountedPtr<Node> Node::AddChild(const std::string& name) {
    auto child = MakeCounted<Node>();
    m_children.emplace(name, child);
    return child;
}

const Node* Node::FindChild(std::string_view path) const {
    const Node* node = this;
    for (bool isLast = false; node && !isLast;) {
        const auto end = path.find_first_of(separators);
        isLast = end == std::string_view::npos;
        const auto found = node->m_children.lower_bound(std::string(path.substr(0, end)));
        const bool isThere = found != node->m_children.end() && found->first == path.substr(0, end);
        node = isThere ? found->second.Get() : nullptr;
        if (!isLast) path.remove_prefix(end + 1);
    }
    return node;
}

Node* Node::FindChild(std::string_view path) {
    return const_cast<Node*>(std::as_const(*this).FindChild(path));
}

Node::Children Node::FindAll(std::string_view path, Search search) const {
    Children found;
    if (search == Search::Descendants) {
        AddDescendants(path, found);
        return found;
    }
    const auto last = path.find_last_of(separators);
    const Node* parent = last == std::string_view::npos ? this : FindChild(path.substr(0, last));
    if (!parent) return found;
    const std::string name(last == std::string_view::npos ? path : path.substr(last + 1));
    const auto [first, behind] = parent->m_children.equal_range(name);
    for (auto child = first; child != behind; ++child)
        found.emplace(path, child->second);
    return found;
}

void Node::AddDescendants(std::string_view pattern, Children& found) const {
    std::string path = ".";
    std::vector<std::size_t> lengths;
    const auto enter = [&](const std::string& name, const CountedPtr<Node>& node) {
        lengths.push_back(path.size());
        path += '/';
        path += name;
        std::string captures = path;
        if (CmdLine::WildcardMatch(pattern, captures, '\xFF')) found.emplace(path, node);
    };
    Walk(*this, enter, [&](const Node&) {
        path.resize(lengths.back());
        lengths.pop_back();
    });
}

const Node* Node::FindAttribute(std::string_view pattern, const std::string& attribute,
                                const std::string& value) const {
    for (const auto& [path, node] : FindAll(pattern, Search::Descendants)) {
        const auto* present = node->Get(attribute);
        if (present && *present == value) return node.Get();
    }
    return nullptr;
}

void Node::SaveTo(std::ostream& stream) const {
    auto* target = stream.rdbuf();
    bool good = target && WriteHead(*target, *this);
    const auto enter = [&](const std::string& name, const CountedPtr<Node>& node) {
        good = good && WriteName(*target, name) && WriteHead(*target, *node);
    };
    if (good) Walk(*this, enter, [](const Node&) {});
    if (!good) stream.setstate(std::ios_base::badbit);
}

void Node::LoadFrom(std::istream& stream) {
    struct Level {
        CountedPtr<Node> node;  // null for this one
        std::uint32_t children = 0;
    };
    auto* source = stream.rdbuf();
    std::vector<Level> open(1);
    bool good = source && ReadHead(*source, *this, open.back().children);
    std::string name;
    while (good && !open.empty()) {
        if (open.back().children == 0) {
            open.pop_back();
            continue;
        }
        --open.back().children;
        good = ReadName(*source, name);
        if (!good) break;
        Node& parent = open.back().node ? *open.back().node : *this;
        Level child{parent.AddChild(name)};
        good = ReadHead(*source, *child.node, child.children);
        open.push_back(std::move(child));
    }
    if (!good) stream.setstate(std::ios_base::failbit);
}

}  // namespace XML

// A whole XML document as a tree.
#pragma once

#include <iosfwd>
#include <vector>

#include "CountedPtr.h"
#include "Xml/Listener.h"
#include "Xml/Node.h"

namespace XML {

/// Builds a tree from a document, or from several, and replays it. The root has no name; the top-level elements are its
/// children, and one that comes again goes on where the first one stopped.
/// Thread: one thread at a time.
class Base : public virtual IListener {
public:
    /// Reads text; a failure sets the stream's fail bit and drops the tree.
    /// @param replaceRoot  false adds to the tree that is there
    std::istream& Load(std::istream& stream, bool replaceRoot);
    /// This object, about to take a document in the place of the tree.
    IListener& GetListener();

    void Replay(IListener& listener) const;
    /// Writes text, as `Writer` does.
    void Save(std::ostream& stream) const;
    /// Null without a document.
    const CountedPtr<Node>& GetRoot() const { return m_root; }

    void BeginDocument() override;
    void EndDocument() override { m_open.clear(); }
    void Abort() override;
    void OpenTag(const char* name) override;
    void CloseTag() override;
    void Attribute(const char* name, const char* value) override;
    void Text(const char* text) override;

private:
    CountedPtr<Node> m_root;
    std::vector<CountedPtr<Node>> m_open;  // innermost last
    bool m_replaceRoot = true;
};

}  // namespace XML

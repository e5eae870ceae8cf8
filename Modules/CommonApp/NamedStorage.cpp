#include "NamedStorage.h"

#include <vector>

#include "Exceptions.h"
#include "Format.h"

const std::string* NamedStorage::Get(const std::string& name) const {
    if (m_pParent == this) {
        constexpr const char* function = "NamedStorage::Get";
        Utilities::Exception failure(Common::Format("Assertion (${1}) failed at ${2}") % "m_pParent != this" %
                                     function);
        failure.SetLocation(new Utilities::ErrorLocation(__FILE__, __LINE__, function));
        throw failure;
    }
    return m_pParent ? m_pParent->Get(name) : nullptr;
}

std::string NamedStorage::GetOrEmpty(const std::string& name) const {
    const auto* value = Get(name);
    return value ? *value : std::string();
}

namespace {

bool IsOfName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
}

/// Where the name begins that ends `text`, when "$(" stands before it; npos when it doesn't.
std::size_t FindName(const std::string& text) {
    auto at = text.size();
    while (at > 0 && IsOfName(text[at - 1]))
        --at;
    return at >= 2 && text.compare(at - 2, 2, "$(") == 0 ? at : std::string::npos;
}

/// A text being read, with values put in before what is still to be read of it.
class Unread {
public:
    explicit Unread(std::string text) { m_pieces.push_back({std::move(text)}); }

    /// Moves all through the next ")" to `done`, or all there is; false in the second case.
    bool MoveThroughClose(std::string& done) {
        while (!m_pieces.empty()) {
            auto& [text, at] = m_pieces.back();
            const auto close = text.find(')', at);
            const bool isFound = close != std::string::npos;
            const auto end = isFound ? close + 1 : text.size();
            done.append(text, at, end - at);
            at = end;
            if (isFound) return true;
            m_pieces.pop_back();
        }
        return false;
    }
    /// @throws Common::Exception when the values don't end
    void PutBefore(const std::string& value, const std::string& name) {
        constexpr std::size_t mostReplacements = 100000, mostBytes = 64u << 20;
        if (m_pieces.size() <= 1) m_replacements = m_bytes = 0;  // the reference ended in the text itself, in no value
        while (m_pieces.size() > 1 && m_pieces.back().at == m_pieces.back().text.size())
            m_pieces.pop_back();
        m_bytes += value.size();
        if (++m_replacements > mostReplacements || m_bytes > mostBytes)
            throw Common::Exception(Common::Format("The references in $(${1}) have no end") % name);
        m_pieces.push_back({value});
    }

private:
    struct Piece {
        std::string text;
        std::size_t at = 0;
    };
    std::vector<Piece> m_pieces;  // read from the last one to the first
    std::size_t m_replacements = 0;
    std::size_t m_bytes = 0;
};

}  // namespace

void NamedStorage::Expand(std::string& text, bool removeUnknown) const {
    std::string done;
    Unread unread(std::move(text));
    text.clear();
    while (unread.MoveThroughClose(done)) {
        done.pop_back();
        const auto from = FindName(done);
        const auto name = from == std::string::npos ? std::string() : done.substr(from);
        const auto* value = from == std::string::npos ? nullptr : Get(name);
        if (from == std::string::npos || (!value && !removeUnknown)) {
            done += ')';
            continue;
        }
        done.resize(from - 2);
        if (value) unread.PutBefore(*value, name);  // it is looked at again
    }
    text = std::move(done);
}

std::string NamedStorage::Expanded(std::string text, bool removeUnknown) const {
    Expand(text, removeUnknown);
    return text;
}

void NamedStorage::SetParent(NamedStorage* parent) {
    if (!parent) return;
    if (m_pParent)
        m_pParent->SetParent(parent);
    else
        m_pParent = parent;
}

// Named text variables, and the $(name) references to them in texts.
#pragma once

#include <string>

class NamedStorage {
public:
    virtual bool Exists(const std::string& name) const { return Get(name) != nullptr; }
    /// The text, from a parent if need be, or null. Valid until that variable is set again.
    virtual const std::string* Get(const std::string& name) const;
    virtual std::string GetOrEmpty(const std::string& name) const;
    virtual void Set(const std::string& name, const std::string& value) = 0;
    virtual void CopyTo(NamedStorage& target) const = 0;
    /// Replaces each $(name) by its value, and what the value refers to in turn. Names are made of letters, digits and
    /// "._-".
    /// @param removeUnknown  unknown names vanish; else they stay as they stand
    /// @throws Common::Exception when one reference leads to 100,000 others or to 64 MiB, as values do that refer to
    ///         themselves
    virtual void Expand(std::string& text, bool removeUnknown) const;
    virtual std::string Expanded(std::string text, bool removeUnknown) const;
    /// Expands, then computes an expression of 32-bit numbers (decimal or 0x...) with, tightest first: () % */ ! & |^
    /// +- and ><=. Operators of one group go left to right.
    /// @return the result in decimal, or `text` as it was given when it is no expression
    virtual std::string Evaluate(const std::string& text) const;
    /// Null is ignored. With a parent already set, the new one goes to the end of the chain.
    virtual void SetParent(NamedStorage* parent);
    virtual ~NamedStorage() = default;

protected:
    NamedStorage* m_pParent = nullptr;  // not owned
};

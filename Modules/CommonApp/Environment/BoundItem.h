// Members of an object that are filled from the attributes of an XML node.
#pragma once

#include <charconv>
#include <string>

#include "Environment/Variables.h"
#include "Exceptions.h"
#include "Xml/Node.h"

namespace Environment {

enum class Presence { Optional, Mandatory };

/// One attribute and the member that it fills.
class ABoundItem {
public:
    ABoundItem(std::string name, Presence presence) : m_name(std::move(name)), m_presence(presence) {}
    virtual ~ABoundItem() = default;

    /// Takes the attribute's text and converts it, its references to other attributes of the node replaced.
    /// @return false when the text can't be converted, or when a mandatory attribute is missing
    virtual bool Load(const XML::Node& node);
    /// Converts the text that was loaded once more, its references replaced from `variables`; what is still unknown
    /// stays as it stands. Nothing happens when nothing was loaded.
    bool Bind(const NamedStorage& variables);

    const std::string& GetName() const { return m_name; }
    /// As it was loaded.
    const std::string& GetText() const { return m_text; }

protected:
    /// Sets the member. @return false, and the member unchanged, when the text doesn't fit
    virtual bool Convert(const std::string& text) = 0;

private:
    std::string m_name;
    Presence m_presence;
    std::string m_text;
    bool m_isLoaded = false;
};

template <typename T>
class BoundItemBasic : public ABoundItem {
public:
    /// @param target  not owned
    BoundItemBasic(std::string name, T* target, Presence presence = Presence::Optional)
        : ABoundItem(std::move(name), presence), m_target(target) {}

protected:
    T* m_target;
};

template <typename T>
class BoundItem;

template <>
class BoundItem<std::string> : public BoundItemBasic<std::string> {
public:
    using BoundItemBasic::BoundItemBasic;

protected:
    bool Convert(const std::string& text) override {
        *m_target = text;
        return true;
    }
};

/// Decimal digits and nothing else.
template <>
class BoundItem<unsigned> : public BoundItemBasic<unsigned> {
public:
    using BoundItemBasic::BoundItemBasic;

protected:
    bool Convert(const std::string& text) override {
        unsigned value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size()) return false;
        *m_target = value;
        return true;
    }
};

/// An attribute that can't fill its member; thrown as a pointer.
class DataBinderException : public Common::Exception {
public:
    explicit DataBinderException(const ABoundItem& item);
    /// Name of the item.
    const std::string& GetItem() const { return m_item; }
    const std::string& GetText() const { return m_text; }

private:
    std::string m_item;
    std::string m_text;
};

}  // namespace Environment

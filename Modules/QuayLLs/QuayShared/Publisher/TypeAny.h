// A small container for a value of a published record: a number or a text, with the name of its type.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>

namespace TypeAny {

/// A compiler's type name without " __ptr64", "struct ", "class " and "enum ".
std::string PlainTypeName(std::string name);

class placeholder {
public:
    virtual ~placeholder() = default;
    const std::string& GetTypeName() const { return m_typeName; }
    /// True for a text of printable characters, line feeds and carriage returns; anything else is shown as bytes.
    bool IsText() const { return m_isText; }
    /// Bytes of the value; of a text without its end.
    std::size_t GetSize() const { return m_block.size(); }
    const void* GetData() const { return m_block.data(); }
    /// Name of the argument, cut to 260 characters.
    void SetName(const std::string& name) { m_name = name.substr(0, 260); }
    const std::string& GetName() const { return m_name; }
    /// "Type: ...", then size and content of a text, or the bytes of anything else in hexadecimal.
    std::string ToText() const;

protected:
    placeholder(const char* typeName, const void* data, std::size_t size, bool mayBeText);

private:
    std::string m_typeName;
    std::string m_name;
    std::string m_block;
    bool m_isText;
};

template <typename T>
class TypeContainer;

template <>
class TypeContainer<int> : public placeholder {
public:
    explicit TypeContainer(int value) : placeholder("int", &value, sizeof value, false) {}
};

template <>
class TypeContainer<const char*> : public placeholder {
public:
    /// Null is the empty text.
    explicit TypeContainer(const char* value)
        : placeholder("char const * __ptr64", value ? value : "", value ? std::strlen(value) : 0, true) {}
};

}  // namespace TypeAny

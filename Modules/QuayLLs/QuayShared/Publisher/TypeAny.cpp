#include "Publisher/TypeAny.h"

#include <algorithm>

namespace TypeAny {

namespace {

bool IsTextCharacter(char c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\r';
}

}  // namespace

std::string PlainTypeName(std::string name) {
    for (const std::string part : {" __ptr64", "struct ", "class ", "enum "})
        for (auto at = name.find(part); at != std::string::npos; at = name.find(part))
            name.erase(at, part.size());
    return name;
}

placeholder::placeholder(const char* typeName, const void* data, std::size_t size, bool mayBeText)
    : m_typeName(PlainTypeName(typeName)),
      m_block(static_cast<const char*>(data), size),
      m_isText(mayBeText && std::all_of(m_block.begin(), m_block.end(), IsTextCharacter)) {}

std::string placeholder::ToText() const {
    std::string text = "Type: " + m_typeName;
    if (m_isText) return text + "\nBuffer Size: " + std::to_string(GetSize()) + "\nContent " + m_block + "\n";
    text += "\nContent ";
    constexpr const char* digits = "0123456789ABCDEF";
    for (const char c : m_block)
        text.append({digits[static_cast<unsigned char>(c) / 16], digits[static_cast<unsigned char>(c) % 16], ' '});
    return text;
}

}  // namespace TypeAny

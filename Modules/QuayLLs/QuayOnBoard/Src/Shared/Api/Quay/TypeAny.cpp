#include "TypeAny.h"

#include <algorithm>

#include "Format.h"
#include "QuayExceptions.h"

namespace TypeAny {

namespace {

bool IsTextCharacter(char c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\r';
}

template <typename T>
std::unique_ptr<placeholder> Named(const char* name, T value) {
    auto argument = std::make_unique<TypeContainer<T>>(value);
    argument->SetName(name);
    return argument;
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
    for (const char c : m_block)
        text += Common::ToDecimalText(static_cast<unsigned char>(c), 16, 2) + " ";
    return text;
}

std::vector<std::unique_ptr<placeholder>> ArgumentsOf(const QuayErrorRecord& record) {
    std::vector<std::unique_ptr<placeholder>> arguments;
    arguments.push_back(std::make_unique<TypeContainer<int>>('\0'));
    arguments.push_back(Named("fileName", record.fileName));
    arguments.push_back(Named<int>("errorLine", record.errorLine));
    arguments.push_back(Named("funcName", record.funcName));
    arguments.push_back(Named("desc", record.desc));
    return arguments;
}

}  // namespace TypeAny

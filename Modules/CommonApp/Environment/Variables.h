// Named text variables as a store of their own.
#pragma once

#include <map>
#include <string>

#include "NamedStorage.h"

namespace XML {
class Node;
}

namespace Environment {

class Variables : public NamedStorage {
public:
    const std::string* Get(const std::string& name) const override;
    void Set(const std::string& name, const std::string& value) override { (*this)[name] = value; }
    void CopyTo(NamedStorage& target) const override;
    /// The value of a variable, made empty when there is none. References in the name itself are expanded first.
    std::string& operator[](const std::string& name);
    void Merge(const Variables& other) { other.CopyTo(*this); }
    /// Sets the "name" of each child "Variable" to its "value"; null does nothing.
    void Load(const XML::Node* node);

private:
    std::map<std::string, std::string> m_values;
};

}  // namespace Environment

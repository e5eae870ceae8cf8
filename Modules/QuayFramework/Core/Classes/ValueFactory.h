// The factory of typed values by type name.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "ClassFactory.h"
#include "TypeDescriptor.h"

namespace Core {

/// Makes values of the registered types. A description of a value is "{type:text}", "{type}" or just "type".
/// Values that it makes belong to the caller; a text that can't be read leaves the type's default.
class ValueFactory : public DynamicFactory<IValue, GenericFactory<IValue, ClassFactory>> {
public:
    static ValueFactory& Instance();

    /// Null when the type is unknown.
    IValue* Create(const std::string& description) override;
    IValue* Create(const std::string& typeName, const std::string& text);
    /// The value in its type; null when the type is unknown or not a T.
    template <ValueType T>
    ITypedValue<T>* CreateFrom(const std::string& description) {
        std::unique_ptr<IValue> value(Create(description));
        auto* typed = ITypedValue<T>::AsTyped(value.get());
        if (typed) static_cast<void>(value.release());  // it is `typed` now
        return typed;
    }
    /// True when the description has a text and the type is registered.
    bool IsKnown(const std::string& description) const;

    using GenericFactory::Register;
    /// Makes T known as `typeName`, in the place of what had the name.
    template <ValueType T>
    void Register(const std::string& typeName) {
        GenericFactory::Register(typeName, std::make_shared<ClassCreator<TypedValue<T>, IValue>>());
        m_descriptors.insert_or_assign(typeName, std::make_unique<TypeDescriptor<T>>());
    }
    void Unregister(const std::string& typeName) override;
    /// What is known of a type, or null.
    ITypeDescriptor* GetDescriptor(const std::string& typeName) const;

private:
    static std::pair<std::string, std::string> Split(std::string description);

    std::map<std::string, std::unique_ptr<ITypeDescriptor>> m_descriptors;
};

}  // namespace Core

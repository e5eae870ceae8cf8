// What the factory knows of a registered type.
#pragma once

#include <set>

#include "ClassCreator.h"
#include "Value.h"

namespace Core {

class ITypeDescriptor : public IClassCreator<IValue> {
public:
    /// A default value of the type.
    virtual Value CreateValue() = 0;
    /// All legal values of an enumeration; empty for other types.
    virtual std::set<Value> GetValues() const = 0;
    /// The text tables of an enumeration; null for other types.
    virtual const CoreTypes::IMetaType* GetMetaType() const = 0;
};

template <ValueType T>
class TypeDescriptor : public ITypeDescriptor {
public:
    IValue* Create() override { return CreateAsCreated(); }
    TypedValue<T>* CreateAsCreated() override { return new TypedValue<T>; }
    Value CreateValue() override { return Value(T{}); }
    std::set<Value> GetValues() const override {
        std::set<Value> values;
        if constexpr (CoreTypes::Enumeration<T>)
            for (const auto& [value, text] : CoreTypes::MetaType<T>::Get().Displays())
                values.insert(Value(static_cast<T>(value)));
        return values;
    }
    const CoreTypes::IMetaType* GetMetaType() const override {
        if constexpr (CoreTypes::Enumeration<T>)
            return &CoreTypes::MetaType<T>::Get();
        else
            return nullptr;
    }
};

}  // namespace Core

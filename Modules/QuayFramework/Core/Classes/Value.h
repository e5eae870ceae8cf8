// The handle through which client code holds a value of any type.
#pragma once

#include <set>
#include <string>
#include <utility>

#include "CoreErrors.h"
#include "TypedValue.h"

namespace Core {

/// A shared value, or none. Copies share; writing through a handle detaches it from the others first.
/// Thread: not even two handles on one value may be used by two threads.
class Value : public virtual IInterface {
public:
    Value() = default;
    template <ValueType T>
    Value(T value) : m_value(new TypedValue<T>(std::move(value))) {
        m_value->AddRef();
    }
    Value(const char* text) : Value(std::string(text)) {}
    Value(const Value& other) : IObject(), IInterface() { Set(other.m_value); }
    Value(Value&& other) noexcept : m_value(std::exchange(other.m_value, nullptr)) {}
    Value& operator=(Value other) noexcept {
        std::swap(m_value, other.m_value);
        return *this;
    }
    ~Value() override { Set(nullptr); }

    /// Takes a share of `value`; the last handle destroys it.
    void Set(IValue* value);
    /// The value, which stays this handle's, or null.
    IValue* Get() const { return m_value; }
    /// The value's text; empty when there is no value.
    std::string ToString() const { return m_value ? m_value->ToString() : std::string(); }

    /// Throws Utilities::Exception "Incompatible value type" when no T is held.
    template <ValueType T>
    const T& GetRef() const {
        const auto* typed = ITypedValue<T>::AsTyped(std::as_const(m_value));
        if (!typed) Fail("Incompatible value type", __FILE__, __LINE__, "Core::Value::GetRef");
        return typed->GetRef();
    }
    /// As GetRef, for writing; an empty handle gets a default T first.
    template <ValueType T>
    T& GetMutableRef() {
        Detach();
        if (!m_value) Set(new TypedValue<T>);
        auto* typed = ITypedValue<T>::AsTyped(m_value);
        if (!typed) Fail("Incompatible value type", __FILE__, __LINE__, "Core::Value::GetMutableRef");
        return typed->GetMutableRef();
    }

    /// An empty handle equals an empty one only, and sorts before all others.
    friend bool operator==(const Value& left, const Value& right) {
        return left.m_value ? left.m_value->Equals(right.m_value) : !right.m_value;
    }
    friend bool operator<(const Value& left, const Value& right) {
        return right.m_value && (!left.m_value || left.m_value->LessThan(right.m_value));
    }

private:
    void Detach();

    IValue* m_value = nullptr;
};

}  // namespace Core

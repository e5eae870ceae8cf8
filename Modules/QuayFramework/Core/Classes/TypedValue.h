// The concrete values: one instance of each template for every type.
#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include "IValue.h"
#include "ValueText.h"

namespace Core {

template <ValueType T>
class TypedValue;
template <ValueType T>
class TypedRefValue;

/// A value that lies elsewhere and must outlive this object.
template <ValueType T>
class ATypedRefValue : public ITypedValue<T> {
public:
    explicit ATypedRefValue(T& target) : m_target(&target) {}

    const T& GetRef() const override { return *m_target; }
    T& GetMutableRef() override { return *m_target; }

    IValue* Clone() const override { return new TypedValue<T>(*m_target); }
    std::string ToString() const override { return ToText(*m_target); }
    bool FromString(const std::string& text) override { return FromText(text, *m_target); }
    bool IsCompatible(const IValue* other) const override { return ITypedValue<T>::AsTyped(other) != nullptr; }
    bool Equals(const IValue* other) const override { return other && Compare(*other, std::equal_to<>()); }
    bool LessThan(const IValue* other) const override { return !other || Compare(*other, std::less<>()); }

    bool Assign(const IValue* other) override {
        if (!other) return false;
        const auto* typed = ITypedValue<T>::AsTyped(other);
        if (!typed) return FromString(other->ToString());
        *m_target = typed->GetRef();
        return true;
    }

    /// A new value that owns a copy, in the two views of its type; it belongs to the caller.
    virtual ITypedValue<T>* CloneTyped() const { return new TypedValue<T>(*m_target); }
    virtual TypedRefValue<T>* CloneRef() const { return new TypedValue<T>(*m_target); }

private:
    template <typename Order>
    bool Compare(const IValue& other, Order order) const {
        if (const auto* typed = ITypedValue<T>::AsTyped(&other)) return order(*m_target, typed->GetRef());
        const std::string text = other.ToString();
        if constexpr (CoreTypes::Enumeration<T>) {
            if (T read{}; FromText(text, read)) return order(*m_target, read);
        }
        return order(ToString(), text);
    }

    T* m_target;
};

template <IntegerType T>
class IntegerRefValue : public ATypedRefValue<T>, public virtual IIntegerValue {
public:
    using ATypedRefValue<T>::ATypedRefValue;
    std::uint64_t GetAsUnsigned() const override { return static_cast<std::uint64_t>(this->GetRef()); }
    std::string ToHexString(unsigned width) const override { return Common::ToDecimalText(GetAsUnsigned(), 16, width); }
};

namespace Detail {

template <typename T>
struct RefBase {
    using Type = ATypedRefValue<T>;
};
template <IntegerType T>
struct RefBase<T> {
    using Type = IntegerRefValue<T>;
};

}  // namespace Detail

template <ValueType T>
class TypedRefValue : public Detail::RefBase<T>::Type {
public:
    explicit TypedRefValue(T& target) : Detail::RefBase<T>::Type(target) {}
};

/// A value that owns what it refers to.
template <ValueType T>
class TypedValue : public TypedRefValue<T> {
public:
    TypedValue() : TypedRefValue<T>(m_value) {}
    explicit TypedValue(T value) : TypedRefValue<T>(m_value), m_value(std::move(value)) {}

private:
    T m_value{};
};

}  // namespace Core

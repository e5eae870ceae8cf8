// The value interfaces: what every typed value can do, whatever its type.
#pragma once

#include <concepts>
#include <cstdint>
#include <set>
#include <string>

#include "CoreObject.h"
#include "MetaType.h"

namespace Core {

class Value;

template <typename T, typename... Types>
concept OneOf = (std::same_as<T, Types> || ...);

template <typename T>
concept IntegerType = OneOf<T, char, unsigned char, short, unsigned short, int, unsigned int, long, unsigned long,
                            long long, unsigned long long>;

/// The types that a value can have.
template <typename T>
concept ValueType = OneOf<T, bool, double, std::string, std::set<Value>> || IntegerType<T> || CoreTypes::Enumeration<T>;

/// A value of some type. Thread: neither the values nor their counts are safe to share between threads.
class IValue : public virtual IInterface {
public:
    /// A new value that owns a copy; it belongs to the caller.
    virtual IValue* Clone() const = 0;
    virtual std::string ToString() const = 0;
    /// False, and the value is unchanged, when the text can't be read.
    virtual bool FromString(const std::string& text) = 0;
    /// True when `other` is a value of the same type.
    virtual bool IsCompatible(const IValue* other) const = 0;
    /// Values of different types compare by what the other's text means here, else by their texts.
    virtual bool Equals(const IValue* other) const = 0;
    /// As Equals, with "less than"; a null `other` gives true.
    virtual bool LessThan(const IValue* other) const = 0;
    /// Copies, through the text where the types differ. False, and the value is unchanged, when none could be taken.
    virtual bool Assign(const IValue* other) = 0;
    /// Adds 1 to the reference count and gives it.
    virtual std::uint32_t AddRef() = 0;
    /// Subtracts 1 and gives the count; the caller destroys at 0.
    virtual std::uint32_t Release() = 0;
    virtual std::uint32_t GetRefCount() const = 0;
};

/// The reference count, which starts at 0.
class AValue : public virtual IValue {
public:
    AValue() = default;
    AValue(const AValue&) = delete;
    AValue& operator=(const AValue&) = delete;

    std::uint32_t AddRef() override { return ++m_refCount; }
    std::uint32_t Release() override { return --m_refCount; }
    std::uint32_t GetRefCount() const override { return m_refCount; }

private:
    std::uint32_t m_refCount = 0;
};

template <ValueType T>
class ITypedValue : public virtual AValue {
public:
    virtual const T& GetRef() const = 0;
    virtual T& GetMutableRef() = 0;
    /// The value in its type, or null when it is null or of another type.
    static ITypedValue* AsTyped(IValue* value) { return dynamic_cast<ITypedValue*>(value); }
    static const ITypedValue* AsTyped(const IValue* value) { return dynamic_cast<const ITypedValue*>(value); }
};

class IIntegerValue : public virtual IValue {
public:
    /// A negative value is extended to 64 bits before it is read as unsigned.
    virtual std::uint64_t GetAsUnsigned() const = 0;
    /// Upper case, filled with "0" to `width` digits; 0 means 8.
    virtual std::string ToHexString(unsigned width) const = 0;
};

}  // namespace Core

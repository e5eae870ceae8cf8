// The system's own reference-counted pointer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

/// Shares an object between its holders; the last one destroys it. `T` has a virtual destructor where it stands for
/// classes derived from it.
/// Thread: counting isn't atomic, so all holders of an object stay on one thread.
template <typename T>
class CountedPtr {
public:
    CountedPtr() = default;
    CountedPtr(std::nullptr_t) {}
    explicit CountedPtr(T* object) : m_count(object ? new std::uint32_t(1) : nullptr), m_object(object) {}
    CountedPtr(const CountedPtr& other) : m_count(other.m_count), m_object(other.m_object) { Share(); }
    CountedPtr(CountedPtr&& other) noexcept { Swap(other); }
    template <typename U>
    requires std::is_convertible_v<U*, T*> CountedPtr(const CountedPtr<U>& other)
        : m_count(other.m_count), m_object(other.m_object) {
        Share();
    }
    ~CountedPtr() {
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the analysis doesn't follow the count
        if (m_count && --*m_count == 0) Destroy();
    }
    CountedPtr& operator=(CountedPtr other) noexcept {
        Swap(other);
        return *this;
    }

    T* Get() const { return m_object; }
    T& operator*() const { return *m_object; }
    T* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }
    bool operator==(const CountedPtr& other) const { return m_object == other.m_object; }
    std::uint32_t GetCount() const { return m_count ? *m_count : 0; }

private:
    template <typename U>
    friend class CountedPtr;

    void Share() {
        if (m_count) ++*m_count;
    }
    /// Not inlined: a compiler that can't follow the count takes a further holder for a use behind the end.
    [[gnu::noinline]] void Destroy() {
        delete m_count;
        delete m_object;
    }
    void Swap(CountedPtr& other) noexcept {
        std::swap(m_count, other.m_count);
        std::swap(m_object, other.m_object);
    }

    std::uint32_t* m_count = nullptr;
    T* m_object = nullptr;
};

/// An object made and held in one step.
template <typename T, typename... Arguments>
CountedPtr<T> MakeCounted(Arguments&&... arguments) {
    return CountedPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

// One instance of a type for the whole process, whichever of its modules asks first.
//
// A slot is a place for one pointer, found by name; it lives in this library, which every module of the process shares.
// The template below puts a typed pointer into the slot of `T::SingletonName`. The module that asks first makes the
// instance; when that module's code goes away (end of the process, or unloading) it destroys the instance and empties
// the slot, so that nobody meets an object whose code is gone. The next to ask makes a new one.
#pragma once

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#if defined(_WIN32)
#ifdef Singletons_EXPORTS
#define TARN_SINGLETONS_API __declspec(dllexport)
#else
#define TARN_SINGLETONS_API __declspec(dllimport)
#endif
#else
#define TARN_SINGLETONS_API __attribute__((visibility("default")))
#endif

namespace Singletons {

/// Storage of one pointer, zero at first, and the lock for filling and emptying it. Never moves.
struct Slot {
    alignas(void*) unsigned char storage[sizeof(void*)];
    std::mutex creation;
    char name[64];
};

/// The slot of that name, the same in every module.
/// @throws std::length_error when the name is empty or longer than 63 characters, or all 32 slots are taken
/// Thread: safe from several threads.
TARN_SINGLETONS_API Slot& SlotOf(const char* name);

}  // namespace Singletons

/// Access to the one `T` of the process. `T` has `static constexpr const char* SingletonName` and a default
/// constructor. Thread: access is safe from several threads; what `T` itself allows is its own matter.
template <typename T>
class SingletonWrapper {
public:
    /// The pointer to the instance, which is made when there is none.
    static T*& accessObject() {
        T*& instance = Cell();
        if (!std::atomic_ref<T*>(instance).load(std::memory_order_acquire)) Make(instance);
        return instance;
    }

    /// The instance, or null while there is none.
    static T* peekObject() { return std::atomic_ref<T*>(Cell()).load(std::memory_order_acquire); }

    T* operator->() const { return accessObject(); }

private:
    static Singletons::Slot& OwnSlot() {
        static Singletons::Slot& slot = Singletons::SlotOf(T::SingletonName);
        return slot;
    }

    static T*& Cell() { return *std::launder(reinterpret_cast<T**>(OwnSlot().storage)); }

    static void Make(T*& instance) {
        const std::lock_guard guard(OwnSlot().creation);
        if (instance) return;
        m_made = new T;
        static const Owner owner;                  // goes when the module does, by unloading too
        if (m_ownerIsGone) std::atexit(&Destroy);  // asked for by a static object that lived longer than the owner
        std::atomic_ref<T*>(instance).store(m_made, std::memory_order_release);
    }

    /// Empties the slot if this module's instance is still in it.
    static void Destroy() {
        T* made = nullptr;
        {
            const std::lock_guard guard(OwnSlot().creation);
            std::swap(made, m_made);
            T*& instance = Cell();
            if (made && instance == made) std::atomic_ref<T*>(instance).store(nullptr, std::memory_order_release);
        }
        delete made;
    }

    struct Owner {
        Owner() = default;
        ~Owner() {
            Destroy();
            m_ownerIsGone = true;
        }
    };

    // One for each module: hidden symbols aren't shared.
    static inline T* m_made = nullptr;
    static inline bool m_ownerIsGone = false;
};

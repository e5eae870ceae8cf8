#include "SingletonSlots.h"

#include <array>
#include <cstring>
#include <stdexcept>

namespace Singletons {

namespace {
// Needs no construction and no destruction, so that it serves from before the first static object to after the last.
constinit std::array<Slot, 32> slots{};
constinit std::mutex slotsLock;
}  // namespace

Slot& SlotOf(const char* name) {
    const std::lock_guard guard(slotsLock);
    if (!*name || std::strlen(name) >= sizeof(Slot::name)) throw std::length_error("Not a name of 1 to 63 characters");
    for (auto& slot : slots) {
        if (slot.name[0] == '\0') std::strcpy(slot.name, name);
        if (std::strcmp(slot.name, name) == 0) return slot;
    }
    throw std::length_error("All singleton slots are taken");
}

}  // namespace Singletons

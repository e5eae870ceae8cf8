// An open file descriptor and its owner; inside this folder only.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <utility>

namespace OSAL {

/// The descriptor in a handle that the headers keep.
inline int Handle(std::intptr_t handle) {
    return static_cast<int>(handle);
}

class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    int Get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }
    int Release() { return std::exchange(m_descriptor, -1); }
    /// What the system's close answered; 0 when nothing was open.
    int Close() { return m_descriptor >= 0 ? close(std::exchange(m_descriptor, -1)) : 0; }

private:
    int m_descriptor;
};

}  // namespace OSAL

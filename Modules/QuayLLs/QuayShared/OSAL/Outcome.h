// How every part of the tree says that something expected didn't work: a value, or the reason why there is none.
#pragma once

#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace OSAL {

/// Why something was refused: one sentence for a person, without a closing full stop.
struct Refusal {
    std::string reason;
};

/// A value of `T`, or why there is none. `Outcome<>` is for a step that gives no value.
template <typename T = std::monostate>
class [[nodiscard]] Outcome {
public:
    Outcome() requires std::is_same_v<T, std::monostate>
    = default;
    Outcome(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Outcome(Refusal refusal) : m_state(std::in_place_index<1>, std::move(refusal)) {}

    bool IsRefused() const { return m_state.index() == 1; }
    explicit operator bool() const { return m_state.index() == 0; }
    /// Only when it is refused.
    const std::string& Reason() const { return std::get<1>(m_state).reason; }
    Refusal Why() const { return std::get<1>(m_state); }
    /// Only when it isn't refused; likewise the operators.
    T& Value() { return std::get<0>(m_state); }
    const T& Value() const { return std::get<0>(m_state); }
    T& operator*() { return Value(); }
    const T& operator*() const { return Value(); }
    T* operator->() { return &Value(); }
    const T* operator->() const { return &Value(); }

private:
    std::variant<T, Refusal> m_state;
};

}  // namespace OSAL

// What a reader of a person's text gives: the value, or the reason why it is refused.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace quayCommand {

/// Why something was refused, as a person reads it.
struct Refusal {
    std::string reason;
};

template <typename T>
class Outcome {
public:
    Outcome(T value) : m_state(std::move(value)) {}
    Outcome(Refusal refusal) : m_state(std::move(refusal)) {}

    bool IsRefused() const { return std::holds_alternative<Refusal>(m_state); }
    const std::string& Reason() const { return std::get<Refusal>(m_state).reason; }
    /// Only when it isn't refused.
    T& Value() { return std::get<T>(m_state); }

private:
    std::variant<T, Refusal> m_state;
};

}  // namespace quayCommand

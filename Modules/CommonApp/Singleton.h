// The process-wide instance of a type of this module.
#pragma once

namespace Utilities {

/// The one instance of T in the process, made at first use and destroyed at process end.
template <typename T>
class Singleton final : public T {
public:
    static T& Instance() {
        static Singleton instance;
        return instance;
    }

private:
    Singleton() = default;
};

}  // namespace Utilities

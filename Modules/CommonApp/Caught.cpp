#include "Caught.h"

namespace Common {

Caught::Caught() noexcept {
    try {
        throw;
    } catch (const std::exception* failure) {
        m_owned.reset(failure);
        m_failure = failure;
    } catch (const std::exception& failure) {
        m_failure = &failure;
    } catch (...) {
        // No exception of ours: it has neither text nor kind.
    }
}

}  // namespace Common

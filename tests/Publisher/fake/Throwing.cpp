// A listener that hears everything and fails at it, and lacks the other entries.
#include <stdexcept>

extern "C" __attribute__((visibility("default"))) unsigned char DO_LOG() {
    return 1;
}

extern "C" __attribute__((visibility("default"))) void PUBLISH_MESSAGE(const void*) {
    throw std::runtime_error("listener");
}

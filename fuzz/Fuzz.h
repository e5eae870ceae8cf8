// What the fuzz targets share: a check that ends the run with its text, and a file for readers that want one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Support/TempFolder.h"

namespace fuzz {

/// Ends the run, so that the input is kept, unless `holds`.
inline void Expect(bool holds, const char* text) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: expected: %s\n", text);
    std::abort();
}

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// The one file of this run, with new content. @return its path
inline std::string FileWith(std::string_view content) {
    static const Support::TempFolder folder;
    return folder.Write("input", std::string(content));
}

}  // namespace fuzz

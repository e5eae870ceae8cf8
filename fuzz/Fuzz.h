// What the fuzz targets share: a check that ends the run with its text, and a file for readers that want one.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

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

/// The one file of this process, with new content. @return its path
inline std::string FileWith(std::string_view content) {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("tarn-fuzz-" + std::to_string(::getpid()))).string();
    static const struct Remover {
        ~Remover() { std::remove(path.c_str()); }
    } remover;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

}  // namespace fuzz

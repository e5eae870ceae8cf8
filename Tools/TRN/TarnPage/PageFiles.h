// The bundled page's files.
#pragma once

#include <span>
#include <string_view>

namespace TarnPage {

struct PageFile {
    std::string_view path;   ///< of the address: "/main.js"; the page itself is "/"
    std::string_view type;   ///< media type
    std::string_view bytes;  ///< lives as long as the program
};

std::span<const PageFile> PageFiles();

}  // namespace TarnPage

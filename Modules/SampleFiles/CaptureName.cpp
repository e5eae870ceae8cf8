#include "CaptureName.h"

namespace SampleFiles {

std::string NameParameter(std::string_view name, std::string_view key) {
    const std::size_t found = name.find(key);
    if (found == std::string_view::npos) return {};
    const std::size_t begin = found + key.size();
    const std::size_t end = name.find('_', begin);
    return end == std::string_view::npos ? std::string() : std::string(name.substr(begin, end - begin));
}

std::optional<CaptureName> ReadCaptureName(std::string_view name) {
    CaptureName read{NameParameter(name, NameKeys[0]), NameParameter(name, NameKeys[1]),
                     NameParameter(name, NameKeys[2]), NameParameter(name, NameKeys[3])};
    if (read.band.empty() || read.channel.empty() || read.bandwidth.empty() || read.chain.empty()) return std::nullopt;
    return read;
}

}  // namespace SampleFiles

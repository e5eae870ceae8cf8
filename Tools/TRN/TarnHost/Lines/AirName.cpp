#include "Lines/AirName.h"

#include <algorithm>
#include <filesystem>

#include "Lines/Suggest.h"
#include "RadioSetup.h"

namespace TarnHost {

OSAL::Outcome<std::string> ReadAir(const std::string& text) {
    namespace fs = std::filesystem;
    if (text.empty() || text == "sim" || text.find(':') != std::string::npos) return text;
    const auto scenes = quayCommand::ShippedSceneNames();
    if (std::ranges::find(scenes, text) != scenes.end()) return "sim:" + text;
    std::error_code ignored;
    if (fs::exists(text, ignored)) return (text.ends_with(".json") ? "sim:" : "file:") + text;
    const std::string meant = DidYouMean(text, scenes);
    if (meant.empty()) return text;
    return OSAL::Refusal{"there is no air '" + text + "'" + meant};
}

}  // namespace TarnHost

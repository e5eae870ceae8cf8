#include "AirKinds.h"

#include <array>
#include <string_view>

#include "Air/FileAir.h"
#include "Air/Scene/SceneAir.h"
#include "Format.h"

namespace quayCommand {
namespace {

using Opened = OSAL::Outcome<std::unique_ptr<IAir>>;

/// A kind of air. One that needs a library of its own gets an opener here that loads it by name.
struct AirKind {
    std::string_view prefix;
    std::string_view form;             ///< for people
    std::string_view defaultArgument;  ///< of the prefix alone; empty: it needs an argument
    Opened (*open)(const std::string& argument, const AirContext& context);
};

/// The first kind is the default air.
constexpr std::array Kinds{
    AirKind{"sim", "sim, sim:SCENE", "office", OpenSceneAir},
    AirKind{"file", "file:PATH", "", OpenFileAir},
};

std::string Forms() {
    std::string text;
    for (const auto& kind : Kinds)
        text += (text.empty() ? "" : &kind == &Kinds.back() ? " or " : ", ") + std::string(kind.form);
    return text;
}

}  // namespace

OSAL::Outcome<std::unique_ptr<IAir>> OpenAir(const std::string& text, const AirContext& context) {
    const auto colon = text.find(':');
    const auto prefix = text.empty() ? Kinds.front().prefix : std::string_view(text).substr(0, colon);
    for (const auto& kind : Kinds) {
        if (kind.prefix != prefix || (colon == std::string::npos && kind.defaultArgument.empty())) continue;
        auto air =
            kind.open(colon == std::string::npos ? std::string(kind.defaultArgument) : text.substr(colon + 1), context);
        if (air.IsRefused()) return OSAL::Refusal{"air: " + air.Reason()};
        return air;
    }
    return OSAL::Refusal{Common::Format("air: ${1}: isn't ${2}") % text % Forms()};
}

}  // namespace quayCommand

// What the requests' answers are made with.
#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include "Api.h"

namespace TarnServe {

ApiResponse JsonResponse(const nlohmann::json& json, unsigned status = 200);
/// Status "ok", or 409 with the reason.
ApiResponse ResponseTo(const OSAL::Outcome<>& outcome);
/// The body as a JSON object, sent as such: a form of a foreign page can't say that type.
OSAL::Outcome<nlohmann::json> BodyOf(const ApiRequest& request);
nlohmann::json FileListJson(const std::vector<FileEntry>& files);

}  // namespace TarnServe

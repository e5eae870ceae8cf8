// The requests about the burn-in desense test.
#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "Api.h"
#include "ApiAnswers.h"
#include "Guard.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr std::string_view testsPath = "/api/desense/tests/";
constexpr std::string_view channelsPath = "/api/desense/channels/";
/// A report is one page with its own styles; as a document of its own it reaches nothing of the server.
constexpr const char* reportPolicy = "default-src 'none'; style-src 'unsafe-inline'; sandbox";

/// What stands before and behind the first "/".
std::pair<std::string, std::string> Split(std::string_view text) {
    const std::size_t at = std::min(text.find('/'), text.size());
    return {std::string(text.substr(0, at)), std::string(text.substr(std::min(at + 1, text.size())))};
}

/// "desense-2026-01-31T140322Z", with "-2" and so on behind it while that is taken.
std::string NameByTime(const DataFolder& folder) {
    std::string text = UtcText(std::chrono::system_clock::now()).substr(0, 19);
    std::erase(text, ':');
    const std::string name = "desense-" + text + "Z";
    std::string free = name;
    std::error_code error;
    for (int k = 2; std::filesystem::exists(folder.PathOf(free), error); ++k)
        free = name + "-" + std::to_string(k);
    return free;
}

OSAL::Outcome<DesenseConfig> ConfigOf(const Json& value, const DataFolder& folder) {
    if (!value.is_string()) return DesenseConfig::FromJson(value);
    const auto text = folder.Read(value.get<std::string>());
    if (!text) return text.Why();
    return DesenseConfig::FromText(*text);
}

OSAL::Outcome<DesenseOrder> OrderOf(const Json& body, const DataFolder& folder) {
    for (const auto& [key, value] : body.items())
        if (!std::ranges::count(std::array{"action", "name", "config", "limit", "margin_db", "idleBaseline"}, key))
            return OSAL::Refusal{"'" + key.substr(0, 80) + "' is no part of a test's order"};
    const Json name = body.value("name", Json(""));
    const Json limit = body.value("limit", Json(""));
    const Json margin = body.value("margin_db", Json(1.0));
    const Json isIdleFirst = body.value("idleBaseline", Json(false));
    if (!name.is_string() || !limit.is_string()) return OSAL::Refusal{"\"name\" and \"limit\" must be texts"};
    if (const auto text = name.get<std::string>(); !text.empty() && !IsFileName(text))
        return OSAL::Refusal{"'" + text.substr(0, 80) +
                             "' is no name for a test: letters, digits, '-', '_' and '.', 64 at the most"};
    if (!margin.is_number() || !(margin >= 0.0 && margin <= 100.0))
        return OSAL::Refusal{"\"margin_db\" must be a number from 0 to 100"};
    if (!isIdleFirst.is_boolean()) return OSAL::Refusal{"\"idleBaseline\" must be true or false"};
    auto config = ConfigOf(body.value("config", Json(nullptr)), folder);
    if (!config) return config.Why();
    auto limits = ReadLimits(limit.get<std::string>(), folder);
    if (!limits) return limits.Why();
    return DesenseOrder{.name = name == "" ? NameByTime(folder) : name.get<std::string>(),
                        .config = std::move(*config),
                        .limitText = limit.get<std::string>(),
                        .limits = std::move(*limits),
                        .margin_db = margin.get<double>(),
                        .idleBaseline = isIdleFirst.get<bool>()};
}

}  // namespace

ApiResponse Api::TestGraph(const ApiRequest& request) {
    const auto [band, number] = Split(request.path.substr(channelsPath.size()));
    int channel = 0;
    const char* end = number.data() + number.size();
    const bool isNumber = std::from_chars(number.data(), end, channel).ptr == end;
    const auto graph = m_station.Desense().Graph(band, channel);
    return graph && isNumber ? JsonResponse(*graph) : ErrorResponse(404, "the test has no such channel yet");
}

ApiResponse Api::ListTests() {
    Json tests = Json::array();
    for (const ArchivedTest& test : m_station.Archive().List())
        tests.push_back(
            {{"name", test.name}, {"utc", test.utc}, {"verdict", test.verdict}, {"files", FileListJson(test.files)}});
    return JsonResponse(tests);
}

ApiResponse Api::ReadTestFile(const ApiRequest& request) {
    const auto [test, file] = Split(request.path.substr(testsPath.size()));
    auto content = m_station.Archive().Read(test, file);
    if (!content) return ErrorResponse(404, content.Reason());
    if (file == "report.html")
        return {200, "text/html; charset=utf-8", std::move(*content), {{"Content-Security-Policy", reportPolicy}}};
    return {200,
            "application/octet-stream",
            std::move(*content),
            {{"Content-Disposition", "attachment; filename=\"" + test + "-" + file + "\""}}};
}

ApiResponse Api::RemoveTest(const ApiRequest& request) {
    const std::string test = request.path.substr(testsPath.size());
    if (m_station.Desense().IsActive() && m_station.Desense().Name() == test)
        return ErrorResponse(409, "the desense test '" + test + "' isn't over: stop it first");
    return ResponseTo(m_station.Archive().Remove(test));
}

ApiResponse Api::OrderTest(const ApiRequest& request) {
    const auto body = BodyOf(request);
    if (!body) return ErrorResponse(400, body.Reason());
    const Json action = body->value("action", Json(nullptr));
    DesenseTest& test = m_station.Desense();
    if (action == "pause") return ResponseTo(test.Pause());
    if (action == "resume") return ResponseTo(test.Resume());
    if (action == "stop") return ResponseTo(test.Stop());
    if (action != "start") return ErrorResponse(400, "\"action\" must be start, pause, resume or stop");
    if (const auto may = test.MayStart(); !may) return ErrorResponse(409, may.Reason());
    auto order = OrderOf(*body, m_station.Folder());
    if (!order) return ErrorResponse(400, order.Reason());
    return ResponseTo(m_station.StartDesense(std::move(*order)));
}

}  // namespace TarnServe

#include "Api.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ApiAnswers.h"
#include "Guard.h"
#include "KeyTable.h"
#include "PageFiles.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr std::string_view filesPath = "/api/files/";

std::string_view ArgumentText(TarnKeys::ArgumentKind kind) {
    switch (kind) {
        case TarnKeys::ArgumentKind::None:
            return "none";
        case TarnKeys::ArgumentKind::Int:
            return "int";
        case TarnKeys::ArgumentKind::Double:
            return "double";
        default:
            return "text";
    }
}

Json SplitValues(std::string_view values) {
    Json list = Json::array();
    while (!values.empty()) {
        const std::size_t end = std::min(values.find('|'), values.size());
        list.push_back(values.substr(0, end));
        values.remove_prefix(std::min(end + 1, values.size()));
    }
    return list;
}

Json KeysJson() {
    Json keys = Json::array();
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys())
        keys.push_back({{"name", key.name},
                        {"argument", ArgumentText(key.argument.kind)},
                        {"placeholder", key.argument.placeholder},
                        {"values", SplitValues(key.argument.values)},
                        {"group", key.heading},
                        {"help", key.help}});
    return keys;
}

ApiResponse PageResponse(const std::string& path) {
    const auto files = TarnPage::PageFiles();
    const auto file = std::ranges::find(files, path, &TarnPage::PageFile::path);
    if (file == files.end()) return ErrorResponse(404, "there is nothing at '" + path.substr(0, 80) + "'");
    return {200, std::string(file->type), std::string(file->bytes), {}};
}

}  // namespace

ApiResponse JsonResponse(const Json& json, unsigned status) {
    return {status, "application/json", json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n", {}};
}

ApiResponse ResponseTo(const OSAL::Outcome<>& outcome) {
    return outcome ? JsonResponse({{"status", "ok"}}) : ErrorResponse(409, outcome.Reason());
}

OSAL::Outcome<Json> BodyOf(const ApiRequest& request) {
    if (!request.contentType.starts_with("application/json")) return OSAL::Refusal{"the body must be application/json"};
    Json body = Json::parse(request.body, nullptr, false);
    if (!body.is_object()) return OSAL::Refusal{"the body isn't a JSON object"};
    return body;
}

Json FileListJson(const std::vector<FileEntry>& files) {
    Json list = Json::array();
    for (const FileEntry& file : files)
        list.push_back({{"name", file.name}, {"bytes", file.bytes}, {"utc", file.utc}});
    return list;
}

ApiResponse ErrorResponse(unsigned status, const std::string& reason) {
    return JsonResponse({{"error", reason}}, status);
}

bool Api::TakesFile(std::string_view path) {
    return path.starts_with(filesPath);
}

struct Api::Route {
    std::string_view method;
    std::string_view path;  ///< with a "/" at its end: a name follows
    std::function<void(Api&, const ApiRequest&, const Respond&)> handle;

    bool Is(std::string_view text) const { return path.ends_with('/') ? text.starts_with(path) : text == path; }
};

const std::vector<Api::Route>& Api::Routes() {
    using Request = const ApiRequest&;
    const auto now = [](auto answer) {
        return [answer](Api& api, Request request, const Respond& respond) { respond(answer(api, request)); };
    };
    static const std::vector<Route> routes = {
        {"GET", "/api", now([](Api&, Request) { return ApiResponse{.body = ApiDescription()}; })},
        {"GET", "/api/health", now([](Api&, Request) {
             return JsonResponse({{"status", "ok"}});
         })},
        {"GET", "/api/state", now([](Api& api, Request) { return api.State(); })},
        {"GET", "/api/keys", now([](Api&, Request) { return JsonResponse(KeysJson()); })},
        {"POST", "/api/lines", std::mem_fn(&Api::HandleLine)},
        {"POST", "/api/captures", std::mem_fn(&Api::HandleCapture)},
        {"POST", "/api/run", now(std::mem_fn(&Api::SetMode))},
        {"PUT", "/api/limits", now(std::mem_fn(&Api::SetLimit))},
        {"GET", "/api/channels", now([](Api& api, Request) { return JsonResponse(api.m_station.Channels()); })},
        {"DELETE", "/api/channels", now([](Api& api, Request) { return api.ClearChannels(); })},
        {"GET", "/api/files",
         now([](Api& api, Request) { return JsonResponse(FileListJson(api.m_station.Folder().List())); })},
        {"GET", filesPath, now(std::mem_fn(&Api::ReadFile))},
        {"PUT", filesPath, now(std::mem_fn(&Api::WriteFile))},
        {"DELETE", filesPath, now(std::mem_fn(&Api::RemoveFile))},
        {"GET", "/api/desense", now([](Api& api, Request) { return JsonResponse(api.m_station.Desense().Whole()); })},
        {"POST", "/api/desense", now(std::mem_fn(&Api::OrderTest))},
        {"GET", "/api/desense/channels/", now(std::mem_fn(&Api::TestGraph))},
        {"GET", "/api/desense/tests", now([](Api& api, Request) { return api.ListTests(); })},
        {"GET", "/api/desense/tests/", now(std::mem_fn(&Api::ReadTestFile))},
        {"DELETE", "/api/desense/tests/", now(std::mem_fn(&Api::RemoveTest))},
    };
    return routes;
}

void Api::Handle(const ApiRequest& request, const Respond& respond) {
    std::string allowed;
    for (const Route& route : Routes()) {
        if (!route.Is(request.path)) continue;
        if (route.method == request.method) return route.handle(*this, request, respond);
        allowed.append(allowed.empty() ? "" : ", ").append(route.method == "GET" ? "GET, HEAD" : route.method);
    }
    if (allowed.empty() && request.path.starts_with("/api"))
        return respond(ErrorResponse(404, "there is no '" + request.path.substr(0, 80) + "'; GET /api tells what is"));
    if (allowed.empty() && request.method == "GET") return respond(PageResponse(request.path));
    ApiResponse refusal = ErrorResponse(405, request.method + " isn't for '" + request.path.substr(0, 80) + "'");
    refusal.headers.emplace_back("Allow", allowed.empty() ? "GET, HEAD" : allowed);
    respond(std::move(refusal));
}

void Api::HandleLine(const ApiRequest& request, const Respond& respond) {
    const auto body = BodyOf(request);
    if (!body) return respond(ErrorResponse(400, body.Reason()));
    const auto line = body->find("line");
    if (line == body->end() || !line->is_string()) return respond(ErrorResponse(400, "\"line\" must be a text"));
    const Json plain = body->value("plain", Json(false));
    if (!plain.is_boolean()) return respond(ErrorResponse(400, "\"plain\" must be true or false"));
    const std::string text = line->get<std::string>();
    if (text.size() > Station::longestLine)
        return respond(
            ErrorResponse(413, "the line is longer than " + std::to_string(Station::longestLine) + " characters"));
    const auto queued =
        m_station.RunLine(text, {plain.get<bool>()}, [respond](const OSAL::Outcome<std::string>& record) {
            respond(record ? ApiResponse{.body = *record + "\n"} : ErrorResponse(409, record.Reason()));
        });
    if (!queued) respond(ErrorResponse(409, queued.Reason()));
}

void Api::HandleCapture(const ApiRequest& request, const Respond& respond) {
    const auto body = BodyOf(request);
    if (!body) return respond(ErrorResponse(400, body.Reason()));
    const auto name = body->find("name");
    if (name == body->end() || !name->is_string()) return respond(ErrorResponse(400, "\"name\" must be a text"));
    const auto queued = m_station.Analyse(name->get<std::string>(), [respond](const OSAL::Outcome<std::string>& done) {
        respond(done ? JsonResponse({{"status", "ok"}}) : ErrorResponse(409, done.Reason()));
    });
    if (!queued) respond(ErrorResponse(409, queued.Reason()));
}

ApiResponse Api::State() {
    Json state = m_station.State();
    state["seq"] = m_station.LastNumber();
    state["clients"] = m_audience.Clients();
    return JsonResponse(state);
}

ApiResponse Api::ClearChannels() {
    m_station.ClearChannels();
    return JsonResponse({{"status", "ok"}});
}

ApiResponse Api::ReadFile(const ApiRequest& request) {
    const std::string name = request.path.substr(filesPath.size());
    if (!IsFileName(name)) return ErrorResponse(400, "'" + name.substr(0, 80) + "' isn't a file name");
    auto content = m_station.Folder().Read(name);
    if (!content) return ErrorResponse(404, content.Reason());
    return {200,
            "application/octet-stream",
            std::move(*content),
            {{"Content-Disposition", "attachment; filename=\"" + name + "\""}}};
}

ApiResponse Api::WriteFile(const ApiRequest& request) {
    if (request.contentType != "application/octet-stream")
        return ErrorResponse(415, "the body must be application/octet-stream");
    return ResponseTo(m_station.Folder().Write(request.path.substr(filesPath.size()), request.body));
}

ApiResponse Api::RemoveFile(const ApiRequest& request) {
    return ResponseTo(m_station.Folder().Remove(request.path.substr(filesPath.size())));
}

ApiResponse Api::SetMode(const ApiRequest& request) {
    const auto body = BodyOf(request);
    if (!body) return ErrorResponse(400, body.Reason());
    const Json text = body->value("mode", Json(nullptr));
    const auto mode = text.is_string() ? ModeOf(text.get<std::string>()) : std::nullopt;
    if (!mode) return ErrorResponse(400, "\"mode\" must be run, hold, single or scan");
    const Json sweeps = body->value("sweeps", Json(5));
    if (!sweeps.is_number_integer() || sweeps < 1 || sweeps > 1000)
        return ErrorResponse(400, "\"sweeps\" must be a whole number from 1 to 1000");
    const Json allBands = body->value("allBands", Json(false));
    if (!allBands.is_boolean()) return ErrorResponse(400, "\"allBands\" must be true or false");
    return ResponseTo(m_station.SetMode(*mode, {sweeps.get<int>(), allBands.get<bool>()}));
}

ApiResponse Api::SetLimit(const ApiRequest& request) {
    const auto body = BodyOf(request);
    if (!body) return ErrorResponse(400, body.Reason());
    const Json text = body->value("text", Json(""));
    const Json margin = body->value("margin_db", Json(3.0));
    if (!text.is_string() || !margin.is_number() || !(margin >= 0.0 && margin <= 100.0))
        return ErrorResponse(400, "\"text\" must be a text, \"margin_db\" a number from 0 to 100");
    return ResponseTo(m_station.SetLimit(text.get<std::string>(), margin.get<double>()));
}

}  // namespace TarnServe

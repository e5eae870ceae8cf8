#include "Api.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Guard.h"
#include "KeyTable.h"
#include "PageFiles.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr std::string_view filesPath = "/api/files/";

ApiResponse JsonResponse(const Json& json, unsigned status = 200) {
    return {status, "application/json", json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n", {}};
}

ApiResponse ResponseTo(const OSAL::Outcome<>& outcome) {
    return outcome ? JsonResponse({{"status", "ok"}}) : ErrorResponse(409, outcome.Reason());
}

/// The body as a JSON object, sent as such: a form of a foreign page can't say that type.
OSAL::Outcome<Json> BodyOf(const ApiRequest& request) {
    if (!request.contentType.starts_with("application/json")) return OSAL::Refusal{"the body must be application/json"};
    Json body = Json::parse(request.body, nullptr, false);
    if (!body.is_object()) return OSAL::Refusal{"the body isn't a JSON object"};
    return body;
}

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

Json FilesJson(const DataFolder& folder) {
    Json files = Json::array();
    for (const FileEntry& file : folder.List())
        files.push_back({{"name", file.name}, {"bytes", file.bytes}, {"utc", file.utc}});
    return files;
}

}  // namespace

ApiResponse ErrorResponse(unsigned status, const std::string& reason) {
    return JsonResponse({{"error", reason}}, status);
}

bool Api::TakesFile(std::string_view path) {
    return path.starts_with(filesPath);
}

void Api::Handle(const ApiRequest& request, const Respond& respond) {
    if (request.path == "/api/lines" && request.method == "POST") {
        HandleLine(request, respond);
    } else {
        respond(Answer(request));
    }
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
    const auto queued = m_station.RunLine(text, {plain.get<bool>()}, [respond](const std::string& record) {
        respond({200, "application/json", record + "\n", {}});
    });
    if (!queued) respond(ErrorResponse(409, queued.Reason()));
}

ApiResponse Api::Answer(const ApiRequest& request) {
    const std::string& path = request.path;
    const bool isGet = request.method == "GET";
    if (path == "/api" && isGet) return {200, "application/json", ApiDescription(), {}};
    if (path == "/api/health" && isGet) return JsonResponse({{"status", "ok"}});
    if (path == "/api/state" && isGet) {
        Json state = m_station.State();
        state["seq"] = m_station.LastNumber();
        state["clients"] = m_audience.Clients();
        return JsonResponse(state);
    }
    if (path == "/api/keys" && isGet) return JsonResponse(KeysJson());
    if (path == "/api/channels" && isGet) return JsonResponse(m_station.Channels());
    if (path == "/api/channels" && request.method == "DELETE") {
        m_station.ClearChannels();
        return JsonResponse({{"status", "ok"}});
    }
    if (path == "/api/run" && request.method == "POST") return SetMode(request);
    if (path == "/api/limits" && request.method == "PUT") return SetLimit(request);
    if (path == "/api/files" && isGet) return JsonResponse(FilesJson(m_station.Folder()));
    if (TakesFile(path)) return AnswerFile(request);
    if (isGet && !path.starts_with("/api")) return PageResponse(path);
    return ErrorResponse(404,
                         "there is no " + request.method + " '" + path.substr(0, 80) + "'; GET /api tells what is");
}

ApiResponse Api::AnswerFile(const ApiRequest& request) {
    const std::string name = request.path.substr(filesPath.size());
    if (!IsFileName(name)) return ErrorResponse(400, "'" + name.substr(0, 80) + "' isn't a file name");
    const DataFolder& folder = m_station.Folder();
    if (request.method == "GET") {
        auto content = folder.Read(name);
        if (!content) return ErrorResponse(404, content.Reason());
        return {200,
                "application/octet-stream",
                std::move(*content),
                {{"Content-Disposition", "attachment; filename=\"" + name + "\""}}};
    }
    if (request.method == "PUT" && request.contentType == "application/octet-stream")
        return ResponseTo(folder.Write(name, request.body));
    if (request.method == "PUT") return ErrorResponse(415, "the body must be application/octet-stream");
    if (request.method == "DELETE") return ResponseTo(folder.Remove(name));
    return ErrorResponse(405, "a file takes GET, PUT and DELETE");
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

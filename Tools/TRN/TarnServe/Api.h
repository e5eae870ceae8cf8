// The requests that the server answers, without the network: method, path and body in, an answer out.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Station.h"

namespace TarnServe {

struct ApiRequest {
    std::string method;  ///< "GET", "POST", "PUT", "DELETE"
    std::string path;    ///< without the query
    std::string contentType;
    std::string body;
};

struct ApiResponse {
    unsigned status = 200;
    std::string type = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers{};
};

using Respond = std::function<void(ApiResponse)>;

/// {"error": "..."} with this status.
ApiResponse ErrorResponse(unsigned status, const std::string& reason);

/// Thread: the loop's.
class Api {
public:
    Api(Station& station, const IAudience& audience) : m_station(station), m_audience(audience) {}

    /// Calls `respond` once: at once, or when the line is done.
    void Handle(const ApiRequest& request, const Respond& respond);
    /// Whether the path takes files, which may be long.
    static bool TakesFile(std::string_view path);

private:
    struct Route;
    static const std::vector<Route>& Routes();
    void HandleLine(const ApiRequest& request, const Respond& respond);
    void HandleCapture(const ApiRequest& request, const Respond& respond);
    ApiResponse State();
    ApiResponse ClearChannels();
    ApiResponse ReadFile(const ApiRequest& request);
    ApiResponse WriteFile(const ApiRequest& request);
    ApiResponse RemoveFile(const ApiRequest& request);
    ApiResponse SetMode(const ApiRequest& request);
    ApiResponse SetLimit(const ApiRequest& request);
    ApiResponse OrderTest(const ApiRequest& request);
    ApiResponse TestGraph(const ApiRequest& request);
    ApiResponse ListTests();
    ApiResponse ReadTestFile(const ApiRequest& request);
    ApiResponse RemoveTest(const ApiRequest& request);

    Station& m_station;
    const IAudience& m_audience;
};

/// The description of the API: OpenAPI, with a schema for each message of the stream.
std::string ApiDescription();

}  // namespace TarnServe

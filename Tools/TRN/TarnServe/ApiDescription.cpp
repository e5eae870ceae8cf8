// The API as OpenAPI 3.1. Schemas are JSON Schema; those of the plug-in's messages say what its texts hold.
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "Api.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

const Json number = {{"type", "number"}};
const Json whole = {{"type", "integer"}};
const Json text = {{"type", "string"}};
const Json flag = {{"type", "boolean"}};
const Json numberOrNull = {{"type", {"number", "null"}}};

Json ArrayOf(const Json& items) {
    return {{"type", "array"}, {"items", items}};
}

struct Member {
    const char* name;
    Json schema;
    bool isOptional = false;
};

/// An object with exactly these members.
Json ObjectOf(std::initializer_list<Member> members) {
    Json properties = Json::object();
    Json required = Json::array();
    for (const Member& member : members) {
        properties[member.name] = member.schema;
        if (!member.isOptional) required.push_back(member.name);
    }
    return {{"type", "object"}, {"properties", properties}, {"required", required}, {"additionalProperties", false}};
}

Json Either(const Json& a, const Json& b) {
    return {{"anyOf", {a, b}}};
}

const Json status = ObjectOf({{"status", text}});

/// Data of the plug-in's messages of the burn-in desense test, by type.
Json TestSchemas() {
    const Json levels = ArrayOf(numberOrNull);
    const Json channel = ObjectOf({{"value", text}, {"frequency", text}});
    const Json width = ObjectOf({{"bandwidth", text}, {"channels", ArrayOf(channel)}});
    Json schemas = {
        {"Vesper Settings Response",
         ObjectOf({{"bw", text},
                   {"rbw", text},
                   {"chainMode", text},
                   {"iterations", text},
                   {"channels", ArrayOf(ObjectOf({{"band", text}, {"bandwidths", ArrayOf(width)}}))}})},
        {"Clear Vesper Test Messages", ObjectOf({})},
        {"Add Vesper Test Message Response", ObjectOf({{"timestamp", text}, {"message", text}})},
        {"Start Triggers Message",
         ObjectOf({{"NumOfIterations", text}, {"ChainMode", text}, {"Bandwidth", text}, {"RBW", text}})},
        {"Resume Triggers Message", ObjectOf({{"Msg", text}})},
        {"Trigger Response Vesper", ObjectOf({{"numOfBins", text},
                                              {"Band", text},
                                              {"Channel", text},
                                              {"Chain", text},
                                              {"Frequency", text},
                                              {"MaxPeak", text, true},
                                              {"MaxPeakA", text, true},
                                              {"MaxPeakB", text, true},
                                              {"PowerAverage", text, true},
                                              {"PowerAverageA", text, true},
                                              {"PowerAverageB", text, true}})},
        {"Vesper Channel Data Response",
         ArrayOf(ObjectOf({{"frequency", text}, {"numOfBins", text}, {"averageData", levels}, {"maxData", levels}}))}};
    for (const char* type : {"Stop Vesper Test Response", "Export Vesper Result Response", "Dump Vesper Data Response",
                             "Save Vesper Test Messages Response"})
        schemas[type] = status;
    return schemas;
}

/// Data of the plug-in's messages, by type.
Json PluginSchemas() {
    const Json levels = ArrayOf(numberOrNull);
    const Json codes = ArrayOf(number);
    const Json channel = ObjectOf({{"value", text}, {"frequency", text}});
    const Json width = ObjectOf({{"bandwidth", text}, {"channels", ArrayOf(channel)}});
    const Json power = ObjectOf({{"channel", text},
                                 {"frequency", text},
                                 {"bandwidth", text},
                                 {"band", text},
                                 {"powerChainA", text},
                                 {"powerChainB", text}});
    Json schemas = {
        {"Trigger Response",
         ObjectOf(
             {{"numOfBins", whole}, {"numOfSamples", whole}, {"numOfHistogramBuckets", whole}, {"sweepLen", whole}})},
        {"Power Per Chain", ObjectOf({{"chain", text}, {"power", text}})},
        {"Spectrum Data",
         ArrayOf(
             ObjectOf({{"chain", text}, {"data", levels}, {"averageData", levels, true}, {"maxData", levels, true}}))},
        {"Spectrum Data Average",
         ObjectOf({{"chain", text}, {"data0", levels}, {"data1", levels, true}, {"data2", levels, true}})},
        {"IQ Amplitude Data", ArrayOf(ObjectOf({{"chain", text}, {"IData", codes}, {"QData", codes}}))},
        {"Histogram Data",
         ArrayOf(
             ObjectOf({{"chain", text}, {"IQData", codes}, {"IData", codes}, {"QData", codes}, {"IQMinMax", codes}}))},
        {"Maximum Peaks Data",
         ArrayOf(ObjectOf({{"chain", text}, {"data", ArrayOf(ObjectOf({{"frequency", number}, {"power", number}}))}}))},
        {"Supported Channels Data", ArrayOf(ObjectOf({{"band", text}, {"bandwidths", ArrayOf(width)}}))},
        {"Supported Chains Data", ArrayOf(ObjectOf({{"value", text}, {"label", text}}))},
        {"Power Table Data", ArrayOf(ObjectOf({{"key", text}, {"value", power}}))},
        {"Get Platform Info", ObjectOf({{"cpuString", text},
                                        {"computerName", text},
                                        {"archType", text},
                                        {"numOfProcessors", text},
                                        {"wProcessorRevision", text},
                                        {"processorType", text},
                                        {"minAppAddr", text},
                                        {"maxAppAddr", text},
                                        {"activeProcessorMask", text}})},
        {"Set MCC Response", ObjectOf({{"status", text}, {"value", text}})},
        {"Load All Response", ArrayOf(ObjectOf({{"parameter", text}, {"value", text}}))}};
    schemas.update(TestSchemas());
    for (const char* type : {"Gain Status", "Read ADC Samples From File Response", "Save Spectrum Response",
                             "Save MaxHold Response", "Save IQ Response", "Save Spectrum by RBW-Power Response",
                             "Export Spectrum by Frequency-Power Response", "Save All Response"})
        schemas[type] = status;
    return schemas;
}

const Json verdict = ObjectOf({{"chain", text},
                               {"power_dbm", numberOrNull},
                               {"limit_dbm", numberOrNull},
                               {"margin_db", numberOrNull},
                               {"verdict", {{"enum", {"", "PASS", "MARGIN", "FAIL", "INVALID"}}}},
                               {"reason", text}});

Json ChannelRows() {
    return ArrayOf(ObjectOf({{"band", text},
                             {"bandwidth", text},
                             {"channel", whole},
                             {"centre_mhz", number},
                             {"powerA", numberOrNull},
                             {"powerB", numberOrNull},
                             {"limit_dbm", numberOrNull},
                             {"verdict", text},
                             {"utc", text}}));
}

const Json phase = {{"enum", {"none", "running", "pausing", "paused", "stopping", "ended"}}};

/// Phase and progress of the burn-in desense test; `isWhole` adds what only GET /api/desense tells.
Json TestSchema(bool isWhole) {
    const Json level = ObjectOf({{"chain", text}, {"average_dbm", number}, {"peak_dbm", number}});
    const Json spur =
        ObjectOf({{"chain", text}, {"frequency_mhz", number}, {"baseband_mhz", number}, {"level_dbm", number}});
    const Json channel = ObjectOf({{"band", text},
                                   {"channel", whole},
                                   {"centre_mhz", number},
                                   {"verdict", {{"enum", {"", "PASS", "MARGIN", "FAIL", "INVALID"}}}},
                                   {"invalid", text},
                                   {"limit_dbm", numberOrNull},
                                   {"desense_db", numberOrNull},
                                   {"idle_desense_db", numberOrNull},
                                   {"rise_db", numberOrNull},
                                   {"levels", ArrayOf(level)},
                                   {"spurs", ArrayOf(spur)}});
    const Json order = ObjectOf({{"config", {{"type", "object"}, {"additionalProperties", text}}},
                                 {"limit", text},
                                 {"margin_db", number},
                                 {"idleBaseline", flag}});
    const Json leftOut = ObjectOf({{"band", text}, {"channel", whole}, {"reason", text}});
    return ObjectOf({{"phase", phase},
                     {"name", text},
                     {"what", text},
                     {"done", whole},
                     {"total", whole},
                     {"left_s", numberOrNull},
                     {"startedUtc", text},
                     {"endedUtc", text},
                     {"verdict", {{"enum", {"", "PASS", "MARGIN", "FAIL", "INVALID"}}}},
                     {"interrupted", flag},
                     {"trouble", text},
                     {"revision", whole},
                     {"order", Either(order, {{"type", "null"}}), !isWhole},
                     {"channels", ArrayOf(channel), !isWhole},
                     {"leftOut", ArrayOf(leftOut), !isWhole},
                     {"messages", ArrayOf(text), !isWhole}});
}

/// The state; `isRequested` adds what only GET /api/state tells.
Json StateSchema(bool isRequested) {
    const Json adapter = ObjectOf({{"description", text}, {"mac", text}, {"air", text}, {"antennas", whole}});
    const Json run = ObjectOf({{"mode", {{"enum", {"run", "hold", "single", "scan"}}}},
                               {"line", text},
                               {"waiting", whole},
                               {"resting", flag}});
    const Json limits = ObjectOf({{"text", text}, {"margin_db", number}, {"line", ArrayOf(ArrayOf(number))}});
    return ObjectOf({{"version", text},
                     {"adapter", adapter},
                     {"settings", {{"type", "object"}, {"additionalProperties", text}}},
                     {"run", run},
                     {"desense", ObjectOf({{"phase", phase}, {"name", text}})},
                     {"trouble", text},
                     {"limits", Either(limits, {{"type", "null"}})},
                     {"seq", whole, !isRequested},
                     {"clients", whole, !isRequested}});
}

/// Data of the host's messages, by type.
Json HostSchemas() {
    return {{HostType::State, StateSchema(false)},
            {HostType::Frame, ObjectOf({{"band", text},
                                        {"channel", whole},
                                        {"bandwidth_mhz", whole},
                                        {"centre_mhz", number},
                                        {"chain", text},
                                        {"rbw_khz", number},
                                        {"maxHold", flag},
                                        {"holdSince", text},
                                        {"average", flag},
                                        {"averageCount", whole},
                                        {"averageTarget", whole},
                                        {"sweeps", whole},
                                        {"sweepsPerSecond", number},
                                        {"overloaded", ArrayOf(text)},
                                        {"trouble", text},
                                        {"source", text},
                                        {"verdicts", ArrayOf(verdict)}})},
            {HostType::Line, ObjectOf({{"line", text},
                                       {"origin", {{"enum", {"client", "server"}}}},
                                       {"exitCode", whole},
                                       {"output", text},
                                       {"error", text}})},
            {HostType::Progress, ObjectOf({{"what", text}, {"done", whole}, {"total", whole}})},
            {HostType::Channels, ChannelRows()},
            {HostType::Desense, TestSchema(false)},
            {HostType::Refusal, ObjectOf({{"text", text}})}};
}

Json Operation(const std::string& summary, const Json& answer, const Json& body = nullptr) {
    Json operation = {{"summary", summary},
                      {"responses",
                       {{"200", {{"description", "done"}, {"content", {{"application/json", {{"schema", answer}}}}}}},
                        {"default",
                         {{"description", "refused: why"},
                          {"content", {{"application/json", {{"schema", ObjectOf({{"error", text}})}}}}}}}}}};
    if (!body.is_null()) operation["requestBody"] = {{"content", {{"application/json", {{"schema", body}}}}}};
    return operation;
}

Json Bytes() {
    return {{"content", {{"application/octet-stream", {{"schema", {{"type", "string"}, {"format", "binary"}}}}}}}};
}

Json FilePath() {
    Json read = Operation("A file of the data folder", nullptr);
    read["responses"]["200"] = Bytes();
    read["responses"]["200"]["description"] = "the file";
    Json write = Operation("Puts a file into the data folder", status);
    write["requestBody"] = Bytes();
    return {{"parameters",
             {{{"name", "name"},
               {"in", "path"},
               {"required", true},
               {"schema", {{"type", "string"}, {"pattern", "^[A-Za-z0-9][A-Za-z0-9._-]{0,63}$"}}}}}},
            {"get", read},
            {"put", write},
            {"delete", Operation("Removes a file", status)}};
}

Json PathParameter(const std::string& name, const Json& schema) {
    return {{"name", name}, {"in", "path"}, {"required", true}, {"schema", schema}};
}

/// The requests about the burn-in desense test.
Json TestPaths() {
    const Json list = {{"anyOf", {{{"type", "string"}}, ArrayOf(whole)}}};
    const Json numberOrText = {{"type", {"number", "string"}}};
    const Json config = ObjectOf({{"bw", numberOrText},
                                  {"rbw", numberOrText},
                                  {"chainMode", {{"enum", {"A", "B", "AB", "A->B"}}}},
                                  {"iterations", numberOrText},
                                  {"bitcfg", text},
                                  {"disableBit", {{"type", {"boolean", "string"}}}},
                                  {"LBChannels", list},
                                  {"HBChannels", list},
                                  {"UHBChannels", list}});
    const Json order = ObjectOf({{"action", {{"enum", {"start", "pause", "resume", "stop"}}}},
                                 {"name", text, true},
                                 {"config", Either(config, text), true},
                                 {"limit", text, true},
                                 {"margin_db", number, true},
                                 {"idleBaseline", flag, true}});
    const Json file = ObjectOf({{"name", text}, {"bytes", whole}, {"utc", text}});
    const Json test = ObjectOf({{"name", text}, {"utc", text}, {"verdict", text}, {"files", ArrayOf(file)}});
    const Json levels = ArrayOf(numberOrNull);
    const Json graph =
        ObjectOf({{"band", text},
                  {"channel", whole},
                  {"centre_mhz", number},
                  {"bandwidth_mhz", whole},
                  {"levels", ArrayOf(ObjectOf({{"chain", text}, {"average", levels}, {"maximum", levels}}))}});
    Json read = Operation("A file of a test", nullptr);
    read["responses"]["200"] = Bytes();
    read["responses"]["200"]["description"] = "the file; report.html as a page";
    return {
        {"/api/desense",
         {{"get", Operation("The newest burn-in desense test", TestSchema(true))},
          {"post",
           Operation("Starts a test (with a configuration, or the name of its file in the data folder), lets it "
                     "pause and go on, or stops it",
                     status, order)}}},
        {"/api/desense/channels/{band}/{channel}",
         {{"parameters", {PathParameter("band", {{"enum", {"2.4", "5.2", "6-7"}}}), PathParameter("channel", whole)}},
          {"get", Operation("Average and maximum of a channel's bins, in dBm in one RBW", graph)}}},
        {"/api/desense/tests", {{"get", Operation("The tests of the data folder, newest first", ArrayOf(test))}}},
        {"/api/desense/tests/{test}",
         {{"parameters", {PathParameter("test", text)}}, {"delete", Operation("Removes a test's files", status)}}},
        {"/api/desense/tests/{test}/{file}",
         {{"parameters", {PathParameter("test", text), PathParameter("file", text)}}, {"get", read}}}};
}

Json Paths() {
    const Json record = ObjectOf({{"line", text},
                                  {"exitCode", whole},
                                  {"output", text},
                                  {"error", text},
                                  {"left", text},
                                  {"messages", ArrayOf(text)},
                                  {"printed", ArrayOf(text)},
                                  {"printedErrors", ArrayOf(text)},
                                  {"warnings", ArrayOf(text), true}});
    const Json lineBody = ObjectOf({{"line", text}, {"plain", flag, true}});
    const Json runBody = ObjectOf(
        {{"mode", {{"enum", {"run", "hold", "single", "scan"}}}}, {"sweeps", whole, true}, {"allBands", flag, true}});
    const Json file = ObjectOf({{"name", text}, {"bytes", whole}, {"utc", text}});
    Json paths = {
        {"/api/health", {{"get", Operation("That the server answers", status)}}},
        {"/api/state", {{"get", Operation("Adapter, settings, what runs", StateSchema(true))}}},
        {"/api/lines",
         {{"post", Operation("Runs one command line; files in it are names of the data folder", record, lineBody)}}},
        {"/api/run", {{"post", Operation("Sweep on, hold, one sweep, or all channels", status, runBody)}}},
        {"/api/captures",
         {{"post", Operation("Analyses a capture of the data folder as its name says, and holds; the stream tells the "
                             "result as a sweep whose source it is",
                             status, ObjectOf({{"name", text}}))}}},
        {"/api/limits",
         {{"put", Operation("The limit on the channel's power: a level in dBm or a file; empty for none", status,
                            ObjectOf({{"text", text}, {"margin_db", number, true}}))}}},
        {"/api/channels",
         {{"get", Operation("Power of all channels visited", ChannelRows())},
          {"delete", Operation("Forgets them", status)}}},
        {"/api/keys", {{"get", Operation("The keys of the command language", ArrayOf({{"type", "object"}}))}}},
        {"/api/files", {{"get", Operation("The data folder", ArrayOf(file))}}},
        {"/api/files/{name}", FilePath()},
        {"/api/stream",
         {{"get",
           {{"summary",
             "WebSocket: send {\"subscribe\": [types] or \"*\", \"acknowledge\": false}; each message is one "
             "JSON object. With \"acknowledge\", send {\"drawn\": seq of the Host Frame} behind each sweep"},
            {"responses", {{"101", {{"description", "the stream"}}}}}}}}}};
    paths.update(TestPaths());
    return paths;
}

Json Build() {
    Json types = Json::object();
    Json schemas = PluginSchemas();
    for (Json& data : schemas)
        data = Either(data, {{"type", "null"}});
    schemas.update(HostSchemas());
    for (const auto& [type, data] : schemas.items())
        types[type] = ObjectOf({{"seq", whole},
                                {"utc", {{"type", "string"}, {"format", "date-time"}}},
                                {"dropped", whole, true},
                                {"type", {{"const", type}}},
                                {"data", data},
                                {"text", text, true}});
    return {{"openapi", "3.1.0"},
            {"info",
             {{"title", "Tarn"},
              {"version", TARN_VERSION},
              {"description",
               "Command lines and their results over HTTP; the measurement's messages over a WebSocket. "
               "Under schemas stands each message of the stream, by its type; one that the plug-in didn't write as "
               "JSON has no data, and its text."}}},
            {"paths", Paths()},
            {"components", {{"schemas", types}}}};
}

}  // namespace

std::string ApiDescription() {
    static const std::string description = Build().dump(1) + "\n";
    return description;
}

}  // namespace TarnServe

#include "Messages.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr std::string_view opening = R"({"type": ")";
constexpr std::string_view middle = R"(", "data": )";

/// Numbers that printf writes as a word become null; words in quotes stay.
std::string NullForNonFinite(std::string_view text) {
    std::string result;
    std::size_t begin = 0;
    for (std::size_t at = 0; (at = text.find_first_of("in", at)) != std::string_view::npos; ++at) {
        const std::string_view word = text.substr(at, 3);
        if (word != "inf" && word != "nan") continue;
        const std::size_t first = at > 0 && text[at - 1] == '-' ? at - 1 : at;
        const std::size_t end = at + word.size();
        const bool isNumber = first > 0 && std::string_view(" ,[").find(text[first - 1]) != std::string_view::npos &&
                              end < text.size() && std::string_view(",]}").find(text[end]) != std::string_view::npos;
        if (!isNumber) continue;
        result.append(text, begin, first - begin).append("null");
        begin = end;
    }
    return result.append(text.substr(begin));
}

}  // namespace

std::string Message::Head(std::uint64_t dropped) const {
    std::string head = R"({"seq": )" + std::to_string(seq) + R"(, "utc": ")" + utc + R"(", )";
    if (type == HostType::Frame) head += R"("dropped": )" + std::to_string(dropped) + ", ";
    return head;
}

std::string_view TypeOf(std::string_view envelope) {
    if (!envelope.starts_with(opening)) return {};
    const std::size_t end = envelope.find(middle, opening.size());
    if (end == std::string_view::npos) return {};
    return envelope.substr(opening.size(), end - opening.size());
}

std::string_view DataOf(std::string_view envelope) {
    const std::size_t begin = opening.size() + TypeOf(envelope).size() + middle.size();
    return envelope.substr(begin, envelope.size() - begin - 1);
}

std::string Envelope(std::string_view type, std::string_view data) {
    return std::string(opening).append(type).append(middle).append(data).append("}");
}

std::string AsJson(std::string envelope) {
    if (IsOfSweep(TypeOf(envelope))) {
        // the numbers of a sweep, a megabyte or more, break JSON only where they aren't finite
        if (envelope.find("nan") == std::string::npos && envelope.find("inf") == std::string::npos) return envelope;
        envelope = NullForNonFinite(envelope);
    }
    if (Json::accept(envelope)) return envelope;
    const Json whole = {{"type", TypeOf(envelope)}, {"data", nullptr}, {"text", envelope}};
    return whole.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool IsOfSweep(std::string_view type) {
    static constexpr auto types = std::to_array<std::string_view>(
        {"Trigger Response", "Trigger Response Vesper", "Power Per Chain", "Spectrum Data", "Spectrum Data Average",
         "IQ Amplitude Data", "Histogram Data", HostType::Frame});
    return std::ranges::find(types, type) != types.end();
}

std::string UtcText(std::chrono::system_clock::time_point time) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time).time_since_epoch().count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::array<char, 40> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", std::gmtime(&seconds));
    std::array<char, 8> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(milliseconds % 1000));
    return std::string(text.data(), length) + fraction.data();
}

std::string UtcText(std::filesystem::file_time_type time) {
    return UtcText(std::chrono::time_point_cast<std::chrono::system_clock::duration>(
        time - std::filesystem::file_time_type::clock::now() + std::chrono::system_clock::now()));
}

}  // namespace TarnServe

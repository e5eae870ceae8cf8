#include "Guard.h"

#include <algorithm>
#include <array>
#include <boost/asio/ip/address.hpp>
#include <charconv>
#include <optional>

namespace TarnServe {
namespace {

constexpr std::string_view cookieName = "tarn_token=";
constexpr std::size_t longestFileName = 64;
constexpr std::size_t longestToken = 256;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool SameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return Lower(x) == Lower(y); });
}

struct HostAndPort {
    std::string_view name;  ///< with the brackets of an IPv6 address
    std::uint16_t port = 80;
};

std::optional<HostAndPort> SplitPort(std::string_view host) {
    const std::size_t colon = host.rfind(':');
    const bool hasPort = colon != std::string_view::npos && host.find(']', colon) == std::string_view::npos;
    if (!hasPort) return HostAndPort{host};
    HostAndPort split{host.substr(0, colon)};
    const std::string_view digits = host.substr(colon + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), split.port);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return split;
}

/// An IPv6 address in brackets in its shortest form, whatever form it has; anything else as it is.
std::string ShortestName(std::string_view name) {
    if (!name.starts_with('[') || !name.ends_with(']')) return std::string(name);
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address_v6(std::string(name.substr(1, name.size() - 2)), error);
    return error ? std::string(name) : "[" + address.to_string() + "]";
}

/// Digits and points, or what stands in brackets: never a name that somebody else's name server could answer for.
bool IsNumericAddress(std::string_view name) {
    if (name.starts_with('[') && name.ends_with(']')) return true;
    return !name.empty() && std::ranges::all_of(name, [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
}

/// The value of `name` among parts split by `separator`.
std::string_view PartOf(std::string_view text, std::string_view name, char separator) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        std::string_view part = text.substr(0, end);
        while (part.starts_with(' '))
            part.remove_prefix(1);
        if (part.starts_with(name)) return part.substr(name.size());
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {};
}

}  // namespace

Guard::Guard(std::string address, std::uint16_t port, std::string token, std::string machineName)
    : m_address(std::move(address)), m_port(port), m_token(std::move(token)), m_machineName(std::move(machineName)) {}

bool Guard::IsOwnHost(std::string_view host) const {
    const auto split = SplitPort(host);
    if (!split || split->port != m_port) return false;
    const std::string name = ShortestName(split->name);
    if (SameLetters(name, m_address) || name == "[" + m_address + "]") return true;
    static constexpr auto loopbackNames = std::to_array<std::string_view>({"127.0.0.1", "localhost", "[::1]"});
    if (std::ranges::any_of(loopbackNames, [&](std::string_view own) { return SameLetters(name, own); })) return true;
    // on another address the token guards; a name that isn't this machine's is still refused
    return !IsLoopback(m_address) && (IsNumericAddress(name) || SameLetters(name, m_machineName));
}

Admission Guard::Check(const RequestOrigin& request) const {
    if (!IsOwnHost(request.host)) return Admission::WrongHost;
    if (!request.origin.empty()) {
        const std::size_t scheme = request.origin.find("://");
        const bool isWeb = request.origin.starts_with("http://") || request.origin.starts_with("https://");
        if (!isWeb || !SameLetters(request.origin.substr(scheme + 3), request.host)) return Admission::WrongOrigin;
    }
    if (request.fetchSite == "cross-site" || request.fetchSite == "same-site") return Admission::WrongOrigin;
    if (m_token.empty()) return Admission::Fine;
    constexpr std::string_view bearer = "Bearer ";
    const bool isBearer = SameLetters(request.authorization.substr(0, bearer.size()), bearer) &&
                          IsToken(request.authorization.substr(bearer.size()));
    const bool isKnown = isBearer || IsToken(PartOf(request.cookie, cookieName, ';')) || IsTokenInQuery(request.query);
    return isKnown ? Admission::Fine : Admission::NoToken;
}

bool Guard::IsTokenInQuery(std::string_view query) const {
    return IsToken(PartOf(query, "token=", '&'));
}

std::string Guard::Cookie() const {
    return std::string(cookieName) + m_token + "; HttpOnly; SameSite=Strict; Path=/";
}

bool Guard::IsToken(std::string_view text) const {
    if (m_token.empty() || text.size() != m_token.size()) return false;
    // as long for a wrong first character as for a wrong last one
    unsigned char difference = 0;
    for (std::size_t k = 0; k < text.size(); ++k)
        difference = static_cast<unsigned char>(difference | (text[k] ^ m_token[k]));
    return difference == 0;
}

bool IsLoopback(std::string_view address) {
    return address == "localhost" || address == "::1" || address.starts_with("127.");
}

bool IsTokenText(std::string_view text) {
    return text.size() <= longestToken && std::ranges::all_of(text, [](char c) {
               return IsWordCharacter(c) || std::string_view("-._~+/=").find(c) != std::string_view::npos;
           });
}

bool IsFileName(std::string_view name) {
    return !name.empty() && name.size() <= longestFileName && IsWordCharacter(name.front()) &&
           std::ranges::all_of(name, [](char c) { return IsWordCharacter(c) || c == '-' || c == '_' || c == '.'; });
}

}  // namespace TarnServe

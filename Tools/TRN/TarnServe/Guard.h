// Who may talk to the server. A server on the loopback address can be reached from every web page that the person
// visits, so what the browser says of itself decides, not the address.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace TarnServe {

/// What a request says of where it comes from. Empty: it says nothing.
struct RequestOrigin {
    std::string_view host;           ///< header Host
    std::string_view origin;         ///< header Origin
    std::string_view fetchSite;      ///< header Sec-Fetch-Site
    std::string_view authorization;  ///< header Authorization
    std::string_view cookie;         ///< header Cookie
    std::string_view query;          ///< behind "?" of the target
};

enum class Admission { Fine, WrongHost, WrongOrigin, NoToken };

class Guard {
public:
    /// @param address  that the server is bound to, as text
    /// @param token    as IsTokenText wants it; empty: none is asked for
    Guard(std::string address, std::uint16_t port, std::string token, std::string machineName = {});

    /// Host must be a name of this server, Origin this server itself where it is given, and the token must be there
    /// when there is one: as "Authorization: Bearer TOKEN", as the cookie, or as "token=" of the query.
    Admission Check(const RequestOrigin& request) const;

    /// True when the query carries the right token, which a browser then keeps as a cookie.
    bool IsTokenInQuery(std::string_view query) const;
    /// Value of Set-Cookie that keeps the token.
    std::string Cookie() const;

private:
    bool IsOwnHost(std::string_view host) const;
    bool IsToken(std::string_view text) const;

    std::string m_address;
    std::uint16_t m_port;
    std::string m_token;
    std::string m_machineName;
};

/// What fits into a header, a cookie and an address as it stands: letters, digits and "-._~+/=", 256 at the most.
bool IsTokenText(std::string_view text);

/// True for an address that only this machine reaches.
bool IsLoopback(std::string_view address);

/// A plain name inside the data folder: letters, digits, "-", "_" and ".", beginning with a letter or digit, 64 at the
/// most. Never a path.
bool IsFileName(std::string_view name);

}  // namespace TarnServe

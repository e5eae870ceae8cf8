// Command lines of the plug-in as text: quoting a token, and taking a script's comment off.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace TarnHost {

/// `text` as one token of a command line. Nothing when no quoting can say it: double quotes have no escape, and an
/// empty token is dropped.
std::optional<std::string> QuoteToken(std::string_view text);

/// A folder as an argument of a key: quoted, and never to be taken for a key itself.
std::optional<std::string> QuotePath(const std::string& path);

/// A script's line without its comment and its blanks at both ends. "#" begins a comment where a token could begin;
/// inside double quotes or inside a token (`take#1.txt`) it is data.
std::string_view StripComment(std::string_view line);

}  // namespace TarnHost

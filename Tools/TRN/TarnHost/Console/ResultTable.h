// The analysis' result.csv, read back and laid out for a person.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TarnHost {

/// First line of a result.csv, without its end.
constexpr std::string_view resultHeader = "FILE_NAME, POWER, BAND, CH, BW, CHAIN,";

/// One analysed file, each field as it stands in result.csv.
struct ResultRow {
    std::string file;
    std::string power;  ///< dBm over the channel's width
    std::string band;
    std::string channel;
    std::string width;  ///< MHz
    std::string chain;
};

/// Rows of result.csv's text, without its header. File names may hold commas and line ends; what is no row is left out.
std::vector<ResultRow> ParseResults(std::string_view text);

/// The rows sorted by file name, numbers in it by value, in aligned columns under a header line with units. Powers line
/// up at the point.
/// @param columns  width to stay within by shortening names, 0 for no limit
std::string LayOutTable(std::vector<ResultRow> rows, std::size_t columns);

/// `name` cut in its middle to `length` characters; what tells captures apart stands at both ends of a name.
std::string ShortenName(const std::string& name, std::size_t length);

/// The rows as the text of a result.csv, header first. In a name, what would make a row of its own becomes "?", and a
/// comma or a double quote puts the name in quotes.
std::string ResultText(const std::vector<ResultRow>& rows);

}  // namespace TarnHost
